#include "platform/registry.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>

#include "platform/error.h"
#include "platform/file.h"
#include "platform/path.h"
#include "platform/privilege.h"
#include "platform/system_file.h"
#include "platform/xml_tree.h"

namespace orvo {
namespace {

constexpr std::uint64_t kSizeLimit = std::uint64_t{16} << 20;
// Keys nest less deep than XML elements may.
constexpr std::size_t kDepthLimit = 128;
constexpr std::u16string_view kVersion = u"1";

// ---- Where the file is ---------------------------------------------------------------------------------------------

/// A variable of the environment. It is the user's: with privileges that the user has not, it is not there.
std::string Environment(const char* name) {
  if (HasBorrowedPrivileges()) return {};
  const char* value = secure_getenv(name);
  return value ? value : "";
}

std::string HomeFolder() {
  if (std::string home = Environment("HOME"); !home.empty()) return home;
  std::string buffer(1 << 14, '\0');
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found) return {};
  return found->pw_dir;
}

/// Makes the folders of a path that are missing, for nobody but the user.
void MakeFolders(const std::string& folder) {
  if (mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST) return;
  std::string parent = ParentFolder(folder);
  if (errno != ENOENT || parent == folder) Raise(StatusFromErrno(errno));
  MakeFolders(parent);
  if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) Raise(StatusFromErrno(errno));
}

/// With borrowed privileges nothing is written where the user could have laid a trap.
void CheckMayWrite(const std::string& path) {
  if (!HasBorrowedPrivileges()) return;
  std::string existing = path;
  while (access(existing.c_str(), F_OK) != 0 && existing != ParentFolder(existing)) existing = ParentFolder(existing);
  Check(CheckTrustedPath(existing));
}

/// Held while the file is changed. The lock file stays behind: whoever waits for it must find the same one.
Descriptor LockAgainstOthers(const std::string& path) {
  Descriptor lock(OpenFile(path + ".lock", O_RDWR | O_CREAT | O_NOFOLLOW, 0600));
  if (!lock) Raise(PathStatus(errno, path));
  while (flock(lock.get(), LOCK_EX) != 0) {
    if (errno != EINTR) Raise(StatusFromErrno(errno));
  }
  return lock;
}

/// The file that a link at the path leads to, so that the link is kept when the file is replaced.
std::string WithoutLinks(const std::string& path) {
  std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
  return real ? real.get() : path;
}

bool IsMissing(Status status) {
  return status == StatusFromError(kErrorFileNotFound) || status == StatusFromError(kErrorPathNotFound) ||
         status == StatusFromError(kErrorNotAFolder);
}

// ---- Keys ----------------------------------------------------------------------------------------------------------

bool EqualNames(std::u16string_view left, std::u16string_view right) {
  if (left == right) return true;
  UErrorCode error = U_ZERO_ERROR;
  int order = u_strCaseCompare(left.data(), static_cast<std::int32_t>(left.size()), right.data(),
                               static_cast<std::int32_t>(right.size()), U_FOLD_CASE_DEFAULT, &error);
  return U_SUCCESS(error) && order == 0;
}

/// The names of a key path; separators at the ends or in a row count for nothing.
std::vector<std::u16string_view> Names(std::u16string_view key) {
  std::vector<std::u16string_view> names;
  while (!key.empty()) {
    std::size_t end = std::min(key.find(u'\\'), key.size());
    if (end > 0) names.push_back(key.substr(0, end));
    key.remove_prefix(std::min(end + 1, key.size()));
  }
  return names;
}

template <class Keys>
auto FindKey(Keys& keys, std::u16string_view name) {
  return std::ranges::find_if(keys, [name](const auto& key) { return EqualNames(key.name, name); });
}

/// The key of a path, null when it is absent.
template <class Key>
Key* Resolve(Key* root, std::u16string_view path) {
  Key* key = root;
  for (std::u16string_view name : Names(path)) {
    auto found = FindKey(key->subkeys, name);
    if (found == key->subkeys.end()) return nullptr;
    key = &*found;
  }
  return key;
}

template <class Key>
Key* Make(Key* root, std::u16string_view path) {
  std::vector<std::u16string_view> names = Names(path);
  if (names.size() > kDepthLimit) Raise(E_INVALIDARG);
  Key* key = root;
  for (std::u16string_view name : names) {
    auto found = FindKey(key->subkeys, name);
    if (found == key->subkeys.end()) {
      Key made;
      made.name = name;
      found = key->subkeys.insert(key->subkeys.end(), std::move(made));
    }
    key = &*found;
  }
  return key;
}

template <class Values>
auto FindValue(Values& values, std::u16string_view name) {
  return std::ranges::find_if(values, [name](const auto& value) { return EqualNames(value.first, name); });
}

// ---- The file's form -----------------------------------------------------------------------------------------------

/// Nested no deeper than XML elements may be.
template <class Key>
void ReadKey(XmlElement element, Key* key) {
  key->default_value = element.Attribute("default");
  for (XmlElement child = element.FirstChild(); child; child = child.NextSibling()) {
    std::optional<std::u16string> name = child.Attribute("name");
    if (!name || name->empty()) Raise(E_FAIL);
    if (child.Name() == u"key") {
      key->subkeys.emplace_back().name = *name;
      ReadKey(child, &key->subkeys.back());
    } else if (child.Name() == u"value") {
      key->values.emplace_back(*name, child.Attribute("data").value_or(u""));
    }
  }
}

template <class Key>
void WriteKey(const Key& key, XmlElement element) {
  if (key.default_value) element.SetAttribute("default", *key.default_value);
  for (const auto& [name, data] : key.values) {
    XmlElement value = element.AddElement("value");
    value.SetAttribute("name", name);
    value.SetAttribute("data", data);
  }
  for (const Key& subkey : key.subkeys) {
    XmlElement child = element.AddElement("key");
    child.SetAttribute("name", subkey.name);
    WriteKey(subkey, child);
  }
}

template <class Key>
void ParseRegistry(std::string_view xml, Key* root) {
  XmlTree tree;
  Check(tree.LoadText(xml));
  XmlElement element = tree.Root();
  if (element.Name() != u"registry" || element.Attribute("version") != kVersion) Raise(E_FAIL);
  ReadKey(element, root);
}

template <class Key>
std::string RegistryText(const Key& root) {
  XmlTree tree;
  XmlElement element = tree.AddRoot("registry");
  element.SetAttribute("version", kVersion);
  WriteKey(root, element);
  return tree.ToText();
}

/// The file's content; nothing when there is no file.
std::optional<std::string> ReadRegistryFile(const std::string& path) {
  if (HasBorrowedPrivileges()) {
    Status trusted = CheckTrustedPath(path);
    if (IsMissing(trusted)) return std::nullopt;
    Check(trusted);
  }
  std::string xml;
  Status status = ReadFile(PathFromSystem(path), kSizeLimit, &xml);
  if (IsMissing(status)) return std::nullopt;
  Check(status);
  return xml;
}

}  // namespace

std::string Registry::FilePath() {
  if (std::string named = Environment("ORVO_REGISTRY"); !named.empty()) return named;
  // A relative data folder counts as none.
  std::string data = Environment("XDG_DATA_HOME");
  if (!data.starts_with('/')) {
    std::string home = HomeFolder();
    if (home.empty()) return {};
    data = home + "/.local/share";
  }
  return data + "/orvo/registry.xml";
}

Status Registry::Read(Registry* registry) {
  if (!registry) return E_POINTER;
  return Guard([&] {
    registry->root_ = {};
    std::string path = FilePath();
    if (path.empty()) return;
    Key root;
    if (std::optional<std::string> xml = ReadRegistryFile(path)) ParseRegistry(*xml, &root);
    registry->root_ = std::move(root);
  });
}

Status Registry::Update(const std::function<Status(Registry&)>& change) {
  return Guard([&] {
    std::string path = FilePath();
    if (path.empty()) Raise(StatusFromError(kErrorPathNotFound));
    CheckMayWrite(path);
    MakeFolders(ParentFolder(path));
    Descriptor lock = LockAgainstOthers(path);
    Registry registry;
    Check(Read(&registry));
    Status status = Check(change(registry));
    Check(ReplaceFile(PathFromSystem(WithoutLinks(path)), RegistryText(registry.root_)));
    return status;
  });
}

std::optional<std::u16string> Registry::Value(std::u16string_view key, std::u16string_view name) const {
  const Key* found = Resolve(&root_, key);
  if (!found) return std::nullopt;
  if (name.empty()) return found->default_value;
  auto value = FindValue(found->values, name);
  if (value == found->values.end()) return std::nullopt;
  return value->second;
}

bool Registry::HasKey(std::u16string_view key) const {
  return Resolve(&root_, key) != nullptr;
}

std::vector<std::u16string> Registry::Subkeys(std::u16string_view key) const {
  std::vector<std::u16string> names;
  if (const Key* found = Resolve(&root_, key)) {
    for (const Key& subkey : found->subkeys) names.push_back(subkey.name);
  }
  return names;
}

void Registry::SetKey(std::u16string_view key) {
  Make(&root_, key);
}

void Registry::SetValue(std::u16string_view key, std::u16string_view name, std::u16string_view value) {
  Key* made = Make(&root_, key);
  if (name.empty()) {
    made->default_value = value;
    return;
  }
  auto found = FindValue(made->values, name);
  if (found == made->values.end()) {
    made->values.emplace_back(name, value);
  } else {
    found->second = value;
  }
}

void Registry::RemoveKey(std::u16string_view key) {
  std::vector<std::u16string_view> names = Names(key);
  if (names.empty()) {
    root_ = {};
    return;
  }
  std::u16string_view last = names.back();
  auto parent_length = static_cast<std::size_t>(last.data() - key.data());
  Key* parent = Resolve(&root_, key.substr(0, parent_length));
  if (!parent) return;
  auto found = FindKey(parent->subkeys, last);
  if (found != parent->subkeys.end()) parent->subkeys.erase(found);
}

void Registry::RemoveValue(std::u16string_view key, std::u16string_view name) {
  Key* found = Resolve(&root_, key);
  if (!found) return;
  if (name.empty()) {
    found->default_value.reset();
    return;
  }
  auto value = FindValue(found->values, name);
  if (value != found->values.end()) found->values.erase(value);
}

}  // namespace orvo

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <vector>

#include "platform/error.h"
#include "platform/file.h"
#include "platform/path.h"
#include "platform/system_file.h"

namespace orvo {
namespace {

// A folder on the way need not be readable, only those whose entries are listed.
constexpr int kPassFolder = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr int kListFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// A folder on the way down, by its name and by what it is.
struct Level {
  std::string name;
  dev_t device;
  ino_t inode;
};

[[noreturn]] void RaiseErrno() {
  Raise(StatusFromErrno(errno));
}

struct stat DetailsOf(int folder) {
  struct stat details {};
  if (fstat(folder, &details) != 0) RaiseErrno();
  return details;
}

bool IsFolder(int parent, const char* name) {
  struct stat details {};
  return fstatat(parent, name, &details, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(details.st_mode);
}

/// Removes a file, a link or an empty folder; false for a folder that is not empty.
bool RemoveEntry(int parent, const char* name) {
  if (unlinkat(parent, name, 0) == 0 || errno == ENOENT) return true;
  int error = errno;
  if (!IsFolder(parent, name)) Raise(StatusFromErrno(error));
  if (unlinkat(parent, name, AT_REMOVEDIR) == 0 || errno == ENOENT) return true;
  if (errno != ENOTEMPTY && errno != EEXIST) RaiseErrno();
  return false;
}

/// Removes entries up to the first folder that is not empty, and tells its name; empty when all are gone.
std::string RemoveEntries(int folder) {
  Descriptor listed(openat(folder, ".", kListFolder));
  if (!listed) RaiseErrno();
  std::unique_ptr<DIR, int (*)(DIR*)> entries(fdopendir(listed.get()), closedir);
  if (!entries) RaiseErrno();
  listed.Release();  // the stream closes it from now on
  errno = 0;
  while (const dirent* entry = readdir(entries.get())) {
    std::string name = entry->d_name;
    if (name != "." && name != ".." && !RemoveEntry(folder, entry->d_name)) return name;
    errno = 0;
  }
  if (errno != 0) RaiseErrno();
  return {};
}

/// Walks a tree with one open folder at a time, however deep it is. The way back is taken through "..", and only when
/// it leads to the folder that the walk came from.
class TreeRemover {
 public:
  explicit TreeRemover(Descriptor parent) : current_(std::move(parent)) {}

  void Remove(const std::string& name) {
    struct stat start = DetailsOf(current_.get());
    way_.push_back({{}, start.st_dev, start.st_ino});
    Descend(name);
    while (way_.size() > 1) {
      std::string child = RemoveEntries(current_.get());
      if (child.empty()) {
        Ascend();
      } else {
        Descend(child);
      }
    }
  }

 private:
  void Descend(const std::string& name) {
    Descriptor next(openat(current_.get(), name.c_str(), kPassFolder));
    if (!next) RaiseErrno();
    struct stat details = DetailsOf(next.get());
    way_.push_back({name, details.st_dev, details.st_ino});
    current_ = std::move(next);
  }

  void Ascend() {
    std::string name = std::move(way_.back().name);
    way_.pop_back();
    Descriptor up(openat(current_.get(), "..", kPassFolder));
    if (!up) RaiseErrno();
    struct stat details = DetailsOf(up.get());
    if (details.st_dev != way_.back().device || details.st_ino != way_.back().inode) {
      Raise(StatusFromError(kErrorAccessDenied));
    }
    current_ = std::move(up);
    if (unlinkat(current_.get(), name.c_str(), AT_REMOVEDIR) != 0) RaiseErrno();
  }

  Descriptor current_;
  std::vector<Level> way_;
};

bool IsRoot(const std::string& path) {
  struct stat named {};
  struct stat root {};
  return lstat(path.c_str(), &named) == 0 && stat("/", &root) == 0 && named.st_dev == root.st_dev &&
         named.st_ino == root.st_ino;
}

}  // namespace

Status DeleteTree(std::u16string_view path) {
  return Guard([&] {
    std::string system;
    Check(PathToSystem(path, &system));
    while (system.size() > 1 && system.ends_with('/')) system.pop_back();
    if (IsRoot(system)) Raise(StatusFromError(kErrorAccessDenied));
    std::string name = LastName(system);
    if (name.empty()) Raise(StatusFromError(kErrorInvalidName));

    Descriptor parent(OpenFile(ParentFolder(system), O_PATH | O_DIRECTORY));
    if (!parent) Raise(PathStatus(errno, system));
    struct stat details {};
    if (fstatat(parent.get(), name.c_str(), &details, AT_SYMLINK_NOFOLLOW) != 0) Raise(PathStatus(errno, system));
    if (!RemoveEntry(parent.get(), name.c_str())) TreeRemover(std::move(parent)).Remove(name);
  });
}

}  // namespace orvo

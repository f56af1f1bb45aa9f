#include "platform/class_factory.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/error.h"
#include "platform/library.h"
#include "platform/path.h"
#include "platform/registry.h"

namespace orvo {
namespace {

struct ClassObject {
  std::uint32_t cookie = 0;
  Guid class_id;
  ComPtr<IClassFactory> factory;
};

/// What the process knows of classes. The lock is never held while a library or a factory is called, since those may
/// come back here.
struct Classes {
  std::mutex lock;
  std::uint32_t last_cookie = 0;
  std::vector<ClassObject> objects;
  std::vector<std::string> added_paths;
  std::vector<std::shared_ptr<Library>> loaded;
};

/// Never destroyed: objects of the libraries may live until the process ends.
Classes& AllClasses() {
  static auto& classes = *new Classes;
  return classes;
}

ComPtr<IClassFactory> OwnFactory(const Guid& class_id) {
  Classes& classes = AllClasses();
  std::lock_guard lock(classes.lock);
  auto newest = std::find_if(classes.objects.rbegin(), classes.objects.rend(),
                             [&](const ClassObject& object) { return object.class_id == class_id; });
  return newest == classes.objects.rend() ? nullptr : newest->factory;
}

auto FindLoaded(std::vector<std::shared_ptr<Library>>& loaded, const std::string& path) {
  return std::ranges::find_if(loaded, [&](const std::shared_ptr<Library>& library) { return library->path() == path; });
}

/// The library of a path, loaded unless it is already. Whoever holds the result keeps it loaded.
std::shared_ptr<Library> LoadedLibrary(const std::string& path) {
  Classes& classes = AllClasses();
  {
    std::lock_guard lock(classes.lock);
    if (auto found = FindLoaded(classes.loaded, path); found != classes.loaded.end()) return *found;
  }
  std::shared_ptr<Library> loaded = Library::Load(path);
  std::lock_guard lock(classes.lock);
  // Another thread may have been faster; the loader counts both, and the second count is given back.
  if (auto found = FindLoaded(classes.loaded, path); found != classes.loaded.end()) return *found;
  classes.loaded.push_back(loaded);
  return loaded;
}

/// A factory does not keep its library loaded, so the library is handed out with it.
struct Found {
  std::shared_ptr<Library> library;
  Status status = REGDB_E_CLASSNOTREG;
};

Found GetFromLibrary(const std::string& path, const Guid& class_id, const Guid& iid, void** out) {
  std::shared_ptr<Library> library = LoadedLibrary(path);
  Status status = library->Entry<DllGetClassObjectFunction>("DllGetClassObject")(class_id, iid, out);
  return {std::move(library), status};
}

/// The library that the registry names for a class; empty when it names none.
std::u16string RegisteredLibrary(const Guid& class_id) {
  Registry registry;
  Check(Registry::Read(&registry));
  return registry.Value(u"CLSID\\" + FormatGuid(class_id) + u"\\InprocServer32").value_or(u"");
}

Found GetFromAddedLibraries(const Guid& class_id, const Guid& iid, void** out) {
  std::vector<std::string> paths;
  {
    Classes& classes = AllClasses();
    std::lock_guard lock(classes.lock);
    paths = classes.added_paths;
  }
  for (const std::string& path : paths) {
    Found found = GetFromLibrary(path, class_id, iid, out);
    if (found.status != CLASS_E_CLASSNOTAVAILABLE) return found;
  }
  return {};
}

Found FindClassObject(const Guid& class_id, const Guid& iid, void** out) {
  if (ComPtr<IClassFactory> factory = OwnFactory(class_id)) return {nullptr, factory->QueryInterface(iid, out)};

  // A registry that cannot be read does not hide the libraries that the host has added, but says so when they lack
  // the class.
  std::u16string registered;
  Status registry_status = Guard([&] { registered = RegisteredLibrary(class_id); });
  if (!registered.empty()) return GetFromLibrary(LibraryPath(registered), class_id, iid, out);
  Found found = GetFromAddedLibraries(class_id, iid, out);
  if (found.status == REGDB_E_CLASSNOTREG && Failed(registry_status)) found.status = registry_status;
  return found;
}

thread_local std::uint32_t apartment_joins = 0;

}  // namespace

Status GetClassObject(const Guid& class_id, const Guid& iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  return Guard([&] { return FindClassObject(class_id, iid, out).status; });
}

Status CreateInstance(const Guid& class_id, const Guid& iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  return Guard([&] {
    Found found;  // outlives the factory
    ComPtr<IClassFactory> factory;
    found = FindClassObject(class_id, IClassFactory::kIid, factory.OutVoid());
    Check(found.status);
    return factory->CreateInstance(nullptr, iid, out);
  });
}

Status RegisterClassObject(const Guid& class_id, IClassFactory* factory, std::uint32_t* cookie) {
  if (!factory || !cookie) return E_POINTER;
  return Guard([&] {
    ComPtr<IClassFactory> held(factory);
    Classes& classes = AllClasses();
    std::lock_guard lock(classes.lock);
    classes.objects.push_back({classes.last_cookie + 1, class_id, std::move(held)});
    *cookie = ++classes.last_cookie;
  });
}

Status RevokeClassObject(std::uint32_t cookie) {
  ComPtr<IClassFactory> released;  // after the lock is given back
  Classes& classes = AllClasses();
  std::lock_guard lock(classes.lock);
  auto found = std::ranges::find(classes.objects, cookie, &ClassObject::cookie);
  if (found == classes.objects.end()) return E_INVALIDARG;
  released = std::move(found->factory);
  classes.objects.erase(found);
  return S_OK;
}

Status ClassFromProgId(std::u16string_view prog_id, Guid* class_id) {
  if (!class_id) return E_POINTER;
  return Guard([&] {
    // A separator would lead to a key that is no program identifier's.
    if (prog_id.empty() || prog_id.find(u'\\') != prog_id.npos) return CO_E_CLASSSTRING;
    Registry registry;
    Check(Registry::Read(&registry));
    std::u16string key(prog_id);
    std::optional<std::u16string> text = registry.Value(key + u"\\CLSID");
    if (!text) text = registry.Value(registry.Value(key + u"\\CurVer").value_or(u"") + u"\\CLSID");
    return ParseGuid(text.value_or(u""), class_id);
  });
}

Status AddLibrary(std::u16string_view path) {
  return Guard([&] {
    std::string system = LibraryPath(path);
    Classes& classes = AllClasses();
    std::lock_guard lock(classes.lock);
    if (std::ranges::find(classes.added_paths, system) == classes.added_paths.end()) {
      classes.added_paths.push_back(std::move(system));
    }
  });
}

void FreeUnusedLibraries() {
  Classes& classes = AllClasses();
  // Only libraries that no thread is calling are taken out, and nobody finds them while they are asked: what one
  // answers is then still true when it is unloaded.
  std::vector<std::shared_ptr<Library>> asked;
  {
    std::lock_guard lock(classes.lock);
    std::vector<std::shared_ptr<Library>> kept;
    for (std::shared_ptr<Library>& library : classes.loaded) {
      (library.use_count() == 1 ? asked : kept).push_back(std::move(library));
    }
    classes.loaded = std::move(kept);
  }
  std::erase_if(asked, [](const std::shared_ptr<Library>& library) { return library->CanUnload(); });
  std::lock_guard lock(classes.lock);
  for (std::shared_ptr<Library>& library : asked) {
    if (FindLoaded(classes.loaded, library->path()) == classes.loaded.end()) {
      classes.loaded.push_back(std::move(library));
    }
  }
}

Status CallLibraryEntry(std::u16string_view path, const char* entry) {
  if (!entry) return E_POINTER;
  return Guard([&] {
    std::shared_ptr<Library> library = Library::Load(LibraryPath(path));
    return library->Entry<DllRegisterServerFunction>(entry)();
  });
}

Status JoinMultithreadedApartment() {
  return apartment_joins++ == 0 ? S_OK : S_FALSE;
}

void LeaveApartment() {
  if (apartment_joins > 0) --apartment_joins;
}

}  // namespace orvo

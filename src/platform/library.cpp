#include "platform/library.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstdlib>

#include "platform/class_factory.h"
#include "platform/error.h"
#include "platform/path.h"
#include "platform/privilege.h"
#include "platform/system_file.h"

namespace orvo {

std::string LibraryPath(std::u16string_view path) {
  std::string system;
  Check(PathToSystem(path, &system));
  // The way to the library counts as much as the library: a link in it could be changed.
  if (HasBorrowedPrivileges()) Check(CheckTrustedLibrary(system));
  // Also makes the name absolute: the loader would look for a bare one in folders of its own.
  std::unique_ptr<char, void (*)(void*)> real(realpath(system.c_str(), nullptr), std::free);
  if (!real) Raise(PathStatus(errno, system));
  return real.get();
}

std::shared_ptr<Library> Library::Load(const std::string& path) {
  if (HasBorrowedPrivileges()) Check(CheckTrustedLibrary(path));
  Descriptor readable;
  Check(OpenForReading(path, &readable));
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) Raise(StatusFromErrno(ELIBBAD));
  std::shared_ptr<Library> library;
  try {
    library = std::make_shared<Library>(path, handle);
  } catch (...) {
    dlclose(handle);
    throw;
  }
  return library;
}

Library::~Library() {
  dlclose(handle_);
}

bool Library::CanUnload() const {
  void* entry = dlsym(handle_, "DllCanUnloadNow");
  return entry && reinterpret_cast<DllCanUnloadNowFunction*>(entry)() == S_OK;
}

void* Library::Symbol(const char* name) const {
  void* symbol = dlsym(handle_, name);
  if (!symbol) Raise(StatusFromErrno(ENOSYS));
  return symbol;
}

}  // namespace orvo

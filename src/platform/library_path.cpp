#include <dlfcn.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

#include "platform/class_factory.h"
#include "platform/path.h"

namespace orvo {

Status LibraryPathOf(const void* address, std::u16string* path) {
  Dl_info info{};
  if (dladdr(address, &info) == 0 || !info.dli_fname) return E_FAIL;
  // The loader keeps the name that it was given, which may be relative to a folder of that time.
  std::unique_ptr<char, decltype(&std::free)> full(realpath(info.dli_fname, nullptr), &std::free);
  if (!full) return StatusFromErrno(errno);
  *path = PathFromSystem(full.get());
  return S_OK;
}

}  // namespace orvo

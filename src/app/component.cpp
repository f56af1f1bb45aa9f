#include "app/component.h"

#include <array>
#include <filesystem>
#include <system_error>

#include "platform/path.h"

namespace orvo::app {

std::u16string LibraryBesideCommand() {
  std::error_code error;
  const std::filesystem::path command = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return {};
  const std::filesystem::path root = command.parent_path().parent_path();
  for (const char* folder : {"lib", "lib/orvo"}) {
    const std::filesystem::path library = root / folder / "OrvoReports.so";
    if (std::filesystem::exists(library, error)) return PathFromSystem(library.string());
  }
  return {};
}

void UseLibraryBesideCommand() {
  if (const std::u16string library = LibraryBesideCommand(); !library.empty()) AddLibrary(library);
}

}  // namespace orvo::app

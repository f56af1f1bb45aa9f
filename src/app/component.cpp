#include "app/component.h"

#include <fmt/core.h>

#include <filesystem>
#include <system_error>

#include "platform/code_page.h"
#include "platform/path.h"

namespace orvo::app {

std::string SystemPath(std::u16string_view path) {
  std::string system;
  return Succeeded(PathToSystem(path, &system)) ? system : ToUtf8(path);
}

namespace {

/// The folder that holds the command's folder, of a build or of an installation; empty when it is not known.
std::filesystem::path RootOfCommand() {
  std::error_code error;
  const std::filesystem::path command = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::path() : command.parent_path().parent_path();
}

}  // namespace

std::string TemplatesBesideCommand() {
  const std::filesystem::path root = RootOfCommand();
  const std::filesystem::path templates = root / "share/orvo-reports/templates";
  std::error_code error;
  return !root.empty() && std::filesystem::is_directory(templates, error) ? templates.string() : std::string();
}

std::u16string LibraryBesideCommand() {
  const std::filesystem::path root = RootOfCommand();
  if (root.empty()) return {};
  std::error_code error;
  for (const char* folder : {"lib", "lib/orvo"}) {
    const std::filesystem::path library = root / folder / "OrvoReports.so";
    if (std::filesystem::exists(library, error)) return PathFromSystem(library.string());
  }
  return {};
}

void UseLibraryBesideCommand() {
  const std::u16string library = LibraryBesideCommand();
  if (library.empty()) return;
  const Status status = AddLibrary(library);
  if (Succeeded(status)) return;
  const std::string path = SystemPath(library);
  if (status == StatusFromError(kErrorAccessDenied)) {
    throw CommandError(kFailed,
                       path +
                           ": is not trusted; a command that has privileges uses only a library that nobody "
                           "but root can change, in folders of which the same is true, or that lies beside its own");
  }
  Require(status, path);
}

void RequireClass(Status status, std::string_view what) {
  if (Succeeded(status)) return;
  throw CommandError(kFailed, fmt::format("{} cannot be used: {} (orvo-report classes tells where it comes from)", what,
                                          Describe(status)));
}

}  // namespace orvo::app

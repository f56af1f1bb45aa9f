#include "app/report_folder.h"

#include <fmt/core.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "app/messages.h"

namespace orvo::app {

namespace fs = std::filesystem;

fs::path MakeFolder(const fs::path& path) {
  std::error_code error;
  fs::path folder = fs::absolute(path, error);
  if (!error) fs::create_directories(folder, error);
  if (error)
    throw CommandError(
        kFailed, fmt::format("{}: this folder cannot be made ({}); name another one", path.string(), error.message()));
  if (access(folder.c_str(), W_OK | X_OK) != 0) {
    throw CommandError(kFailed,
                       fmt::format("{}: cannot be written: {}", path.string(), Describe(StatusFromErrno(errno))));
  }
  return folder;
}

}  // namespace orvo::app

#include "app/report_files.h"

#include <fmt/core.h>

#include <filesystem>
#include <map>

#include "app/component.h"
#include "platform/error.h"

namespace orvo::app {
namespace {

namespace fs = std::filesystem;

/// The cause of a file's failure. Whatever is not a plain file is refused without saying why.
std::string WhyNotWritten(const ReportFiles::File& file) {
  std::error_code error;
  const fs::file_status kind = fs::symlink_status(file.path, error);
  if (file.status == StatusFromError(kErrorAccessDenied)) {
    if (fs::is_symlink(kind)) return "is a symbolic link, which a report does not follow; remove it";
    if (fs::exists(kind) && !fs::is_regular_file(kind)) return "is not a regular file; remove it";
  }
  return Describe(file.status);
}

}  // namespace

Status ReportFiles::FileDone(const char16_t* path, std::uint64_t rows, Status status) {
  return Guard([&] { files_.push_back({SystemPath(path), rows, status}); });
}

std::vector<std::string> ReportFiles::Problems() const {
  std::map<std::string, std::vector<std::string>> failed;
  for (const File& file : files_) {
    if (Failed(file.status)) failed[WhyNotWritten(file)].push_back(file.path);
  }
  std::vector<std::string> problems;
  for (const auto& [cause, paths] : failed) {
    const std::string others = paths.size() == 1 ? "" : fmt::format(" (and {} more)", paths.size() - 1);
    problems.push_back(fmt::format("{}{}: {}", paths.front(), others, cause));
  }
  return problems;
}

}  // namespace orvo::app

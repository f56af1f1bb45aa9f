#include "app/report_files.h"

#include "platform/code_page.h"
#include "platform/error.h"
#include "platform/path.h"

namespace orvo::app {

Status ReportFiles::FileDone(const char16_t* path, std::uint64_t rows, Status status) {
  return Guard([&] {
    std::string system;
    if (Failed(PathToSystem(path, &system))) system = ToUtf8(path);
    files_.push_back({std::move(system), rows, status});
  });
}

}  // namespace orvo::app

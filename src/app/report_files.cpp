#include "app/report_files.h"

#include "app/component.h"
#include "platform/error.h"

namespace orvo::app {

Status ReportFiles::FileDone(const char16_t* path, std::uint64_t rows, Status status) {
  return Guard([&] { files_.push_back({SystemPath(path), rows, status}); });
}

}  // namespace orvo::app

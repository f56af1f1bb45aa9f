#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/context.h"
#include "platform/object.h"

namespace orvo::app {

/// Hears what became of every file of a report.
class ReportFiles final : public Object<IReportObserver> {
 public:
  struct File {
    std::string path;  ///< in the system's form
    std::uint64_t rows;
    Status status;
  };

  Status FileDone(const char16_t* path, std::uint64_t rows, Status status) override;

  const std::vector<File>& files() const { return files_; }
  /// One line for each cause that kept files from being written, naming the first of them.
  std::vector<std::string> Problems() const;
  void Forget() { files_.clear(); }

 private:
  std::vector<File> files_;
};

}  // namespace orvo::app

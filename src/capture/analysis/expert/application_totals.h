#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "capture/analysis/expert/flow_row.h"

namespace orvo {

/// Sums of flows by the application that they carry; TCP and UDP apart. There are no more rows than names of
/// applications that go together.
class ApplicationTotals {
 public:
  void Add(const FlowRow& flow);
  /// The rows, that of most bytes first.
  std::vector<ApplicationRow> Rows() const;

 private:
  std::map<std::uint64_t, ApplicationRow> rows_;
};

}  // namespace orvo

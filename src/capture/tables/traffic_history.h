#pragma once

#include <cstdint>
#include <vector>

#include "capture/tables/sample_ladder.h"

namespace orvo {

/// The samples of one moment.
struct FrozenHistory {
  /// Bytes in each sample, oldest first.
  std::vector<std::uint64_t> Samples() const;

  FrozenTable<std::uint64_t> pieces;                ///< bytes, oldest first
  std::uint32_t pieces_per_sample = 1;              ///< the last sample may have fewer
  std::uint32_t interval = kSampleLengths.front();  ///< of a sample, in seconds
  std::uint64_t start = 0;                          ///< nanoseconds since 1601-01-01 UTC, 0 without samples
};

/// Bytes over time, in no more samples than the chart for their length has points, so that a chart shows the whole
/// capture; samples of a day, whose chart has as many points as it needs, end after ten years.
class TrafficHistory {
 public:
  static const SampleLimits kLimits;

  void Add(std::uint64_t time, std::uint64_t bytes);
  FrozenHistory Freeze();

 private:
  SampleLadder ladder_{kLimits};
  PagedVector<std::uint64_t> pieces_;
};

}  // namespace orvo

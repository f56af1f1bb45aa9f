#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/summary.h"

namespace orvo {

/// What one statistic of the summary shows: one thing in all of its columns, or counts that each column takes its own
/// figure from. A kind that is unknown has nothing.
struct SummaryFigures {
  std::u16string text{};  ///< a date, a time of day or a duration
  std::optional<std::uint64_t> integer{};
  std::optional<double> real{};
  std::optional<std::uint64_t> packets{};
  std::optional<std::uint64_t> bytes{};

  bool counts() const { return packets || bytes; }
  bool empty() const { return text.empty() && !integer && !real && !counts(); }
};

/// The figures of a value. Raises the failure of a conversion.
SummaryFigures FiguresOf(const SummaryValue& value);

}  // namespace orvo

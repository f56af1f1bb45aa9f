#pragma once

#include <cstdint>
#include <string>

#include "engine/context.h"
#include "engine/summary.h"
#include "statistics/statistic_map.h"

namespace orvo {

/// What percentages and rates of a summary are taken against. Duration in nanoseconds.
struct ReferenceTotals {
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;
  std::uint64_t duration = 0;
};

/// The totals that the snapshot itself holds; for one that it cannot give, that of the statistics object. Raises the
/// failure of the latter.
ReferenceTotals ReadReferenceTotals(ISummarySnapshot& snapshot, IStatsContext& statistics);

/// The name of a statistic or group: the engine's, or the map's where the engine has none. A failing query counts as
/// having none.
std::u16string SummaryName(ISummarySnapshot& snapshot, const StatisticMap& map, const Guid& identifier);

/// 100 * part / whole: the product is an unsigned 64-bit one, the quotient a double (not finite for a whole of 0).
inline double Percentage(std::uint64_t part, std::uint64_t whole) {
  return static_cast<double>(100 * part) / static_cast<double>(whole);
}

/// Count per second for a duration in nanoseconds (not finite for a duration of 0).
inline double PerSecond(std::uint64_t count, std::uint64_t duration) {
  return static_cast<double>(count) / (static_cast<double>(duration) / 1e9);
}

}  // namespace orvo

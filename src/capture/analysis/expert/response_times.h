#pragma once

#include <algorithm>
#include <cstdint>

namespace orvo {

/// Times from a request to the first byte of its answer, in microseconds, and how they please (Application Performance
/// Index, Apdex Alliance, version 1.1): up to the target they satisfy, up to four times the target they are
/// tolerated. `Count` is the type of the counters: small ones for each flow, large ones for sums of flows.
template <class Count>
struct ResponseTimes {
  std::uint64_t sum = 0;
  std::uint32_t best = 0;  ///< 0 without samples, as `worst`
  std::uint32_t worst = 0;
  Count satisfied = 0;
  Count tolerated = 0;
  Count frustrated = 0;

  std::uint64_t count() const { return std::uint64_t{satisfied} + tolerated + frustrated; }
  /// Both are only to be asked for where there are samples.
  double mean() const { return static_cast<double>(sum) / static_cast<double>(count()); }
  double apdex() const {
    return (static_cast<double>(satisfied) + static_cast<double>(tolerated) / 2) / static_cast<double>(count());
  }

  void Add(std::uint64_t microseconds, std::uint64_t target) {
    auto time = static_cast<std::uint32_t>(std::min<std::uint64_t>(microseconds, UINT32_MAX));
    best = count() == 0 ? time : std::min(best, time);
    worst = std::max(worst, time);
    sum += microseconds;
    ++(microseconds <= target ? satisfied : microseconds <= 4 * target ? tolerated : frustrated);
  }

  template <class Other>
  void Join(const ResponseTimes<Other>& other) {
    if (other.count() == 0) return;
    best = count() == 0 ? other.best : std::min(best, other.best);
    worst = std::max(worst, other.worst);
    sum += other.sum;
    satisfied += other.satisfied;
    tolerated += other.tolerated;
    frustrated += other.frustrated;
  }
};

}  // namespace orvo

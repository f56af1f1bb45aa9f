#include "capture/analysis/jitter_estimate.h"

#include <algorithm>
#include <cmath>

namespace orvo {

void JitterEstimate::Take(std::uint64_t time, std::uint32_t timestamp, std::uint32_t clock_rate) {
  if (clock_rate != 0 && clock_rate == clock_rate_) {
    // D(i-1, i) = (R_i - R_i-1) - (S_i - S_i-1); both differences may be negative, and the timestamp wraps.
    double received = static_cast<double>(static_cast<std::int64_t>(time - last_time_)) / 1e6;
    double sent = static_cast<std::int32_t>(timestamp - last_timestamp_) * 1e3 / clock_rate;
    jitter_ += (std::abs(received - sent) - jitter_) / 16;
    largest_ = std::max(largest_, jitter_);
    sum_ += jitter_;
    ++differences_;
  }
  last_time_ = time;
  last_timestamp_ = timestamp;
  clock_rate_ = clock_rate;
}

}  // namespace orvo

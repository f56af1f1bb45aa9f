#pragma once

#include <cstdint>

namespace orvo {

/// Turns the time stamps of a capture file into time values. Moments before 1601 and behind the last one that a time
/// value can hold become the nearest that it can; that is never 0, which stands for no time at all.
class TimeScale {
 public:
  /// Microseconds since 1970, which is what files mean that say nothing.
  TimeScale() : TimeScale(6, 0) {}
  /// `resolution` as in if_tsresol of pcapng: stamps count units of 10 to the minus n seconds, or of 2 to the minus n
  /// where the highest bit is set. `offset` is added, in seconds.
  TimeScale(std::uint8_t resolution, std::int64_t offset);

  /// Nanoseconds since 1601-01-01 UTC, rounded down.
  std::uint64_t TimeOf(std::uint64_t stamp) const {
    return stamp < simple_end_ ? simple_base_ + stamp * simple_factor_ : AnyTimeOf(stamp);
  }

 private:
  std::uint64_t AnyTimeOf(std::uint64_t stamp) const;

  std::uint8_t resolution_;
  std::int64_t offset_;
  // Stamps of whole nanoseconds that do not run out of range, which are nearly all that ever occur.
  std::uint64_t simple_end_ = 0;
  std::uint64_t simple_base_ = 0;
  std::uint64_t simple_factor_ = 1;
};

}  // namespace orvo

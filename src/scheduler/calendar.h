#pragma once

#include <cstdint>
#include <string>

#include "platform/clock.h"

namespace orvo {

// Times are seconds since 1970-01-01 00:00 UTC.

/// A number of units (IntervalUnit), read and written together.
struct Interval {
  std::uint32_t value;
  std::int32_t unit;
};

std::int64_t SecondsNow(Clock& clock);

/// The length in seconds, at most 4,294,967,295.
std::uint32_t LengthOf(Interval interval);

/// The end of the interval that has begun by the local clock: minutes are counted from the hour, hours from midnight,
/// days from Sunday. Units have their plain length, so that after a change of the clocks the end may be off by it. An
/// interval of 0 gives the begin of the hour, the day, the week (the minute for seconds), which is in the past.
/// Raises the platform's failure to tell the local time.
std::int64_t AlignedNext(Interval interval, std::int64_t now);

/// "2007-11-14 10.00.00 - 11.00.00" in local time, with the second date where it is another.
std::u16string RangeText(std::int64_t begin, std::int64_t end);

}  // namespace orvo

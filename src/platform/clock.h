#pragma once

#include <cstdint>
#include <memory>

#include "platform/export.h"

namespace orvo {

inline constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;

/// Nanoseconds since 1601-01-01 00:00 UTC for a count of nanoseconds since 1970-01-01 00:00 UTC, and back.
inline constexpr std::uint64_t kUnixEpoch = 11'644'473'600ULL * kNanosecondsPerSecond;
constexpr std::uint64_t TimeFromUnix(std::int64_t unix_nanoseconds) {
  return kUnixEpoch + static_cast<std::uint64_t>(unix_nanoseconds);
}
constexpr std::int64_t UnixFromTime(std::uint64_t time) {
  return static_cast<std::int64_t>(time - kUnixEpoch);
}

enum class WaitResult { kSignalled, kTimeOut, kFailed };

/// Signalled once by Set, reset by the wait that sees it.
class Event {
 public:
  virtual ~Event() = default;
  virtual void Set() = 0;
  /// Waits up to `milliseconds` by the clock that made the event; 0xFFFFFFFF waits without end.
  virtual WaitResult Wait(std::uint32_t milliseconds) = 0;
};

/// Where the time comes from and where waits take place, so that a test can let a year pass in a second.
class Clock {
 public:
  virtual ~Clock() = default;
  /// Nanoseconds since 1601-01-01 UTC, a multiple of 100.
  virtual std::uint64_t Now() = 0;
  virtual std::unique_ptr<Event> CreateEvent() = 0;
};

/// The process's clock: the system's, unless a test has put another in its place (null gives the system's back).
ORVO_PLATFORM_API Clock& ProcessClock();
ORVO_PLATFORM_API void SetProcessClock(Clock* clock);

}  // namespace orvo

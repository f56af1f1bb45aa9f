#include "scheduler/calendar.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "platform/error.h"
#include "platform/locale.h"
#include "scheduler/scheduler.h"
#include "util/ascii.h"

namespace orvo {
namespace {

// What a time value in nanoseconds since 1601 can hold.
constexpr std::int64_t kFirstSecond = -static_cast<std::int64_t>(kUnixEpoch / kNanosecondsPerSecond);
constexpr std::int64_t kLastSecond =
    kFirstSecond + static_cast<std::int64_t>(std::numeric_limits<std::uint64_t>::max() / kNanosecondsPerSecond);

CalendarTime LocalTime(std::int64_t seconds) {
  const std::int64_t held = std::clamp(seconds, kFirstSecond, kLastSecond);
  CalendarTime local;
  Check(ToLocalTime(static_cast<std::uint64_t>(held - kFirstSecond) * kNanosecondsPerSecond, &local));
  return local;
}

constexpr std::int64_t UnitLength(std::int32_t unit) {
  switch (unit) {
    case kUnitMinutes: return 60;
    case kUnitHours: return 3'600;
    case kUnitDays: return 86'400;
    default: return 1;
  }
}

/// How far into the current unit the local time is, and the unit's place in the next larger one.
struct Position {
  int seconds_into_unit;
  int place;
};

Position PositionIn(std::int32_t unit, const CalendarTime& local) {
  switch (unit) {
    case kUnitMinutes: return {local.second, local.minute};
    case kUnitHours: return {local.minute * 60 + local.second, local.hour};
    case kUnitDays: return {local.hour * 3'600 + local.minute * 60 + local.second, local.weekday};
    default: return {0, local.second};
  }
}

template <class... Numbers>
std::string Print(const char* format, Numbers... numbers) {
  char text[64];
  const int length = std::snprintf(text, sizeof(text), format, numbers...);
  return {text, static_cast<std::size_t>(std::clamp<int>(length, 0, sizeof(text) - 1))};
}

std::string DateText(const CalendarTime& time) {
  return Print("%.4d-%.2d-%.2d", time.year, time.month, time.day);
}

std::string TimeText(const CalendarTime& time) {
  return Print("%.2d.%.2d.%.2d", time.hour, time.minute, time.second);
}

}  // namespace

std::int64_t SecondsNow(Clock& clock) {
  return static_cast<std::int64_t>(clock.Now() / kNanosecondsPerSecond) + kFirstSecond;
}

std::uint32_t LengthOf(Interval interval) {
  constexpr std::int64_t kLongest = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(std::min(interval.value * UnitLength(interval.unit), kLongest));
}

std::int64_t AlignedNext(Interval interval, std::int64_t now) {
  const std::int64_t count = interval.value;
  const std::int64_t length = UnitLength(interval.unit);
  const auto [seconds_into_unit, place] = PositionIn(interval.unit, LocalTime(now));
  const std::int64_t units_into_interval = count == 0 ? place : place % count;
  const std::int64_t begin = now - seconds_into_unit - units_into_interval * length;
  return begin + count * length;
}

std::u16string RangeText(std::int64_t begin, std::int64_t end) {
  const CalendarTime first = LocalTime(begin);
  const CalendarTime last = LocalTime(end);
  const std::string end_date = DateText(last);
  std::string text = DateText(first);
  const bool same_day = text == end_date;
  text += " " + TimeText(first) + " - ";
  if (!same_day) text += end_date + " ";
  return WidenAscii(text + TimeText(last));
}

}  // namespace orvo

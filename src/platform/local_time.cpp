#include <array>
#include <ctime>
#include <mutex>
#include <optional>

#include "platform/clock.h"
#include "platform/locale.h"

namespace orvo {
namespace {

constexpr std::int64_t kSecondsPerDay = 86'400;
// Seconds from 1601-01-01 to 1970-01-01.
constexpr std::int64_t kUnixEpochSeconds = 11'644'473'600;

constexpr std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor) {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

struct Day {
  int year;
  int month;
  int day;
};

// The two conversions count in eras of 400 Gregorian years (146097 days) that begin on the first of March, so that
// the leap day is the last of its year.
constexpr std::int64_t kDaysPerEra = 146'097;
constexpr std::int64_t kEraToUnix = 719'468;  // days from 0000-03-01 to 1970-01-01

constexpr std::int64_t DaysFromCivil(std::int64_t year, int month, int day) {
  std::int64_t shifted = month <= 2 ? year - 1 : year;
  std::int64_t era = FloorDivide(shifted, 400);
  std::int64_t year_of_era = shifted - era * 400;
  std::int64_t day_of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  std::int64_t day_of_era = year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
  return era * kDaysPerEra + day_of_era - kEraToUnix;
}

constexpr Day CivilFromDays(std::int64_t days) {
  days += kEraToUnix;
  std::int64_t era = FloorDivide(days, kDaysPerEra);
  std::int64_t day_of_era = days - era * kDaysPerEra;
  std::int64_t year_of_era = (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  std::int64_t day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  std::int64_t month_from_march = (5 * day_of_year + 2) / 153;
  int day = static_cast<int>(day_of_year - (153 * month_from_march + 2) / 5 + 1);
  int month = static_cast<int>(month_from_march < 10 ? month_from_march + 3 : month_from_march - 9);
  return {static_cast<int>(year_of_era + era * 400 + (month <= 2 ? 1 : 0)), month, day};
}

static_assert(DaysFromCivil(1970, 1, 1) == 0);
static_assert(DaysFromCivil(1601, 1, 1) * kSecondsPerDay == -kUnixEpochSeconds);
static_assert(CivilFromDays(DaysFromCivil(2000, 2, 29)).day == 29);

std::int64_t UnixSeconds(std::uint64_t time) {
  return static_cast<std::int64_t>(time / kNanosecondsPerSecond) - kUnixEpochSeconds;
}

/// Asks the C library. The offset is the difference of the fields to UTC, so that it also holds for zones that count
/// leap seconds.
std::optional<std::int32_t> SystemOffset(std::int64_t unix_seconds) {
  static std::once_flag zone_read;
  std::call_once(zone_read, tzset);
  time_t value = unix_seconds;
  tm fields{};
  if (!localtime_r(&value, &fields)) return std::nullopt;
  std::int64_t days = DaysFromCivil(std::int64_t{fields.tm_year} + 1900, fields.tm_mon + 1, fields.tm_mday);
  int second_of_day = fields.tm_hour * 3600 + fields.tm_min * 60 + fields.tm_sec;
  std::int64_t local = days * kSecondsPerDay + second_of_day;
  return static_cast<std::int32_t>(local - unix_seconds);
}

constexpr std::int64_t kBlock = 900;  // seconds

/// The offset of a quarter of an hour in which it does not change. The C library's answer takes a lock that all
/// threads share, and reports ask for the same few minutes again and again.
struct CachedOffset {
  std::int64_t block = -1;
  std::int32_t seconds = 0;
};

std::optional<std::int32_t> OffsetAt(std::int64_t unix_seconds) {
  if (unix_seconds < 0) return SystemOffset(unix_seconds);
  thread_local std::array<CachedOffset, 8> cache;
  std::int64_t block = unix_seconds / kBlock;
  CachedOffset& cached = cache[static_cast<std::size_t>(block) % cache.size()];
  if (cached.block == block) return cached.seconds;

  // A few zones have changed within a quarter: such a block is asked for second by second.
  std::optional<std::int32_t> first = SystemOffset(block * kBlock);
  if (first && first == SystemOffset(block * kBlock + kBlock - 1)) {
    cached = {block, *first};
    return first;
  }
  return SystemOffset(unix_seconds);
}

}  // namespace

Status LocalOffset(std::uint64_t time, std::int32_t* seconds) {
  if (!seconds) return E_POINTER;
  std::optional<std::int32_t> offset = OffsetAt(UnixSeconds(time));
  if (!offset) return E_FAIL;
  *seconds = *offset;
  return S_OK;
}

Status ToLocalTime(std::uint64_t time, CalendarTime* local) {
  if (!local) return E_POINTER;
  std::int32_t offset = 0;
  if (Status status = LocalOffset(time, &offset); Failed(status)) return status;
  std::int64_t seconds = UnixSeconds(time) + offset;
  std::int64_t days = FloorDivide(seconds, kSecondsPerDay);
  int second_of_day = static_cast<int>(seconds - days * kSecondsPerDay);
  Day day = CivilFromDays(days);
  // 1970-01-01 was a Thursday.
  int weekday = static_cast<int>(((days + 4) % 7 + 7) % 7);
  *local = {day.year, day.month, day.day, second_of_day / 3600, second_of_day / 60 % 60, second_of_day % 60, weekday};
  return S_OK;
}

}  // namespace orvo

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// A locale by name in the form of the environment ("de_DE.UTF-8", "C") or of BCP 47 ("de-DE").
/// The user's default locale is taken from LC_ALL, LC_TIME, LC_NUMERIC and LANG on first use, unless set before.
/// E_INVALIDARG for a name that names no known language. The process sets it once, before it formats anything.
ORVO_PLATFORM_API Status SetUserLocale(std::string_view name);

/// The name in BCP 47 form of the user's default locale ("en-US" for C and POSIX).
ORVO_PLATFORM_API std::u16string UserLocaleName();

/// The locale of a thread, as a number: 0x0400 the user's default (initial), 0x0800 the system's default.
inline constexpr std::uint32_t kUserDefaultLocale = 0x0400;
inline constexpr std::uint32_t kSystemDefaultLocale = 0x0800;
ORVO_PLATFORM_API std::uint32_t GetThreadLocale();
ORVO_PLATFORM_API void SetThreadLocale(std::uint32_t locale);

enum class LocaleItem {
  kDecimal,         ///< decimal separator text
  kThousand,        ///< grouping separator text
  kLeadingZero,     ///< "1" when a number below 1 starts with 0, else "0"
  kGrouping,        ///< group sizes such as "3;0" or "3;2;0"
  kNegativeNumber,  ///< "0" (1), "1" -1, "2" - 1, "3" 1-, "4" 1 -
  kNegativeSign,    ///< text of the negative sign
};

/// An item of the user's default locale.
ORVO_PLATFORM_API std::u16string LocaleInfo(LocaleItem item);

/// Calendar fields: year in full, month 1 to 12, day 1 to 31, hour 0 to 23, weekday 0 (Sunday) to 6.
struct CalendarTime {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int weekday = 0;
};

/// A time value (nanoseconds since 1601-01-01 00:00 UTC) in the process's time zone.
ORVO_PLATFORM_API Status ToLocalTime(std::uint64_t time, CalendarTime* local);

/// Difference of local time to UTC at a time value, in seconds.
ORVO_PLATFORM_API Status LocalOffset(std::uint64_t time, std::int32_t* seconds);

/// The user's short date form, with a four-digit year.
ORVO_PLATFORM_API Status FormatShortDate(const CalendarTime& date, std::u16string* out);

/// The user's time form with 24 hours and without a marker; hours above 23 are written as they are.
ORVO_PLATFORM_API Status FormatTime24(int hour, int minute, int second, std::u16string* out);

}  // namespace orvo

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace orvo {

/// A duration in nanoseconds as a text:
///   below one minute, with a fraction        7.250
///   below one day                            03:04:05 or 03:04:05.250
///   from one day on                          `day_pattern`, its two "%s" filled with the days and the time
/// in the forms of the user's default locale, behind its negative sign for a negative duration. The fraction has the
/// digits of `precision` (see SubSecond); below 0 nothing but the sign is written, above 3 nothing at all.
/// The result replaces `out`. E_POINTER for a null out text, else the status of the conversion that failed, and then
/// the text is empty.
Status FormatDuration(std::int64_t duration, int precision, std::u16string_view day_pattern, std::u16string* out);

}  // namespace orvo

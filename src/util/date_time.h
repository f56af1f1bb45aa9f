#pragma once

#include <cstdint>
#include <string>

#include "platform/status.h"

namespace orvo {

// Time values are nanoseconds since 1601-01-01 00:00 UTC. Everything is written in local time and in the forms of the
// user's default locale. Results replace the out text; on failure it is empty. E_POINTER for a null out text, else the
// status of the conversion that failed.

/// The short date.
Status FormatDate(std::uint64_t time, std::u16string* out);

/// The 24-hour time, with a fraction of a second for the precisions 0 to 2 (see SubSecond).
Status FormatTimeOfDay(std::uint64_t time, int precision, std::u16string* out);

/// What reports carry: short date, one blank, 24-hour time without a fraction.
Status FormatTimestamp(std::uint64_t time, std::u16string* out);

}  // namespace orvo

#pragma once

#include "platform/export.h"

namespace orvo {

/// Writes a finite number with so many decimals (0 to 6) behind a full stop, and gives the end of what it wrote: the
/// same digits as std::to_chars, in a fraction of the time for numbers below 10^12. The room must be large enough for
/// the number, which takes up to 318 characters.
ORVO_PLATFORM_API char* WriteFixed(double value, int decimals, char* begin, char* end);

}  // namespace orvo

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace orvo {

/// Formatted texts (dates, times, durations, numbers) hold at most this many characters; longer ones are cut.
inline constexpr std::size_t kFormattedTextLimit = 256;

inline void CutFormattedText(std::u16string* text) {
  if (text->size() > kFormattedTextLimit) text->resize(kFormattedTextLimit);
}

/// What stands behind the seconds of a time or duration. Other values are allowed where a function says so.
enum SubSecond : int {
  kMilliseconds = 0,  ///< three digits
  kMicroseconds = 1,  ///< six digits
  kNanoseconds = 2,   ///< nine digits
  kNoFraction = 3,
};

/// The fraction digits of `nanoseconds` below one second for precisions 0 to 2, behind the locale's decimal separator;
/// nothing for any other precision.
std::u16string FractionText(std::uint64_t nanoseconds, int precision);

}  // namespace orvo

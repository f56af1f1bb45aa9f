#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orvo {

// How cells of the analysis tables are worded. Decimals stand behind a point in every locale, as whoever copies a table
// takes commas out.

std::u16string CountCell(std::uint64_t value);
/// With that many digits behind the point; empty for what is not a number.
std::u16string RealCell(double value, int digits);
/// A time value as local short date and time with microseconds, "11/23/2026 00:39:38.000000"; empty for 0.
std::u16string TimeCell(std::uint64_t time);
/// Nanoseconds as hours, minutes, seconds and microseconds, "0:00:05.980000".
std::u16string DurationCell(std::uint64_t nanoseconds);
/// UTF-8 from the wire: what cannot be seen, or is no UTF-8, is a question mark.
std::u16string WireTextCell(std::string_view utf8);
/// "0x" and eight digits in upper case.
std::u16string HexCell(std::uint32_t value);

}  // namespace orvo

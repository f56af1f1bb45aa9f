#pragma once

#include <cstdint>
#include <string_view>

namespace orvo {

/// The label of a radio band as channel tables show it ("bg", "an"); empty for a code without one. Band 300 is told
/// apart by its channel number.
std::string_view BandLabel(std::uint32_t band, std::int32_t channel);

/// The label behind the number of its standard, as reports print a band: "802.11bg". The bands 100 to 104 are no part
/// of the standard and stand alone ("BPS 10MHz ChBw"); a code without a label leaves the number. The text lives as long
/// as the program.
std::string_view BandText(std::uint32_t band, std::int32_t channel);

}  // namespace orvo

#pragma once

#include <cstdint>
#include <string_view>

namespace orvo {

/// The label of a radio band as channel tables show it ("bg", "an"); empty for a code without one. Band 300 is told
/// apart by its channel number.
std::string_view BandLabel(std::uint32_t band, std::int32_t channel);

}  // namespace orvo

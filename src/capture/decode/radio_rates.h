#pragma once

#include <cstdint>

namespace orvo {

// Data rates of HT, VHT and HE in units of 500 kbit/s, rounded to the nearest; 0 for parameters that no rate has.

/// Index 0 to 32 of equal modulation (IEEE 802.11-2020 clause 19.5).
std::uint32_t HtRate(std::uint32_t index, bool is_40_mhz, bool short_guard);

/// `width` in MHz: 20, 40, 80, 160 (IEEE 802.11-2020 clause 21.5).
std::uint32_t VhtRate(std::uint32_t index, std::uint32_t streams, std::uint32_t width, bool short_guard);

/// `tones` is the number of data subcarriers: 234, 468, 980 and 1960 for 20, 40, 80 and 160 MHz, 24, 48 and 102 for
/// resource units of 26, 52 and 106 tones; `guard` in nanoseconds: 800, 1600, 3200; `dual` for dual carrier modulation,
/// which sends everything twice (IEEE 802.11ax-2021 clause 27.5).
std::uint32_t HeRate(std::uint32_t index, std::uint32_t streams, std::uint32_t tones, std::uint32_t guard, bool dual);

}  // namespace orvo

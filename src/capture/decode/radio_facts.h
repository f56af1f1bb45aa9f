#pragma once

#include <cstdint>

#include "engine/wireless.h"

namespace orvo {

/// A signal or noise level. `percent` is negative when nobody measured it; `dbm` is kNoDbm also when it was measured in
/// another unit.
struct RadioLevel {
  std::int8_t percent = -1;
  std::int8_t dbm = kNoDbm;

  bool known() const { return percent >= 0; }
};

/// The percentage of a level in dBm is 2 * (dBm + 100), from 0 at -100 dBm to 100 at -50 dBm: the scale that wireless
/// drivers commonly show signal quality in.
RadioLevel LevelFromDbm(int dbm);
/// For radios that tell a percentage, or decibels above a floor of their own.
RadioLevel LevelFromPercent(int percent);

/// How a channel was seen to be used; a set of these makes up its band code.
enum RadioMode : std::uint16_t {
  kRadioCck = 1,             ///< DSSS and CCK, IEEE 802.11-2020 clauses 15 and 16
  kRadioOfdm = 2,            ///< clauses 17 and 18
  kRadioHt = 4,              ///< HT and whatever followed it, clauses 19, 21 and 27
  kRadioWide = 8,            ///< the same in 40 MHz or more
  kRadioWideAbove = 16,      ///< the wider half lies above the primary channel
  kRadioWideBelow = 32,      ///< or below
  kRadioTurbo = 64,          ///< doubled channels, switched packet by packet
  kRadioStaticTurbo = 128,   ///< doubled channels throughout
  kRadioHalfWidth = 256,     ///< 10 MHz
  kRadioQuarterWidth = 512,  ///< 5 MHz
};

/// What a radio noted beside a frame.
struct RadioFacts {
  std::uint16_t frequency = 0;  ///< MHz, 0 when it did not say
  std::uint16_t channel = 0;    ///< number, 0 when it did not say
  std::uint16_t modes = 0;      ///< set of RadioMode
  std::uint32_t rate = 0;       ///< in units of 500 kbit/s, 0 when it did not say
  bool has_fcs = false;         ///< the frame ends with its frame check sequence
  bool bad_fcs = false;         ///< the frame was damaged on its way
  bool is_padded = false;       ///< the frame's header is filled up to a multiple of 4 bytes
  RadioLevel signal;
  RadioLevel noise;

  /// Both from either; what cannot be told stays 0.
  void SetFrequency(std::uint32_t megahertz);
  void SetChannel(std::uint32_t number);
  /// A rate of DSSS, CCK or OFDM.
  void SetPlainRate(std::uint32_t rate_in_500_kbit);
};

/// The number of a channel by its centre (IEEE 802.11-2020 annex E): 2.4, 4.9, 5 and 6 GHz; 0 for none of them.
std::uint16_t ChannelOfFrequency(std::uint32_t megahertz);
/// The centre in MHz of a channel in 2.4, 4.9 or 5 GHz; 0 for none of them.
std::uint16_t FrequencyOfChannel(std::uint32_t number);

/// The band code of a channel (labels: util/rate_labels.h) for the modes seen on it. Nothing newer than HT has a code
/// of its own: VHT and HE count as HT of their width, everything above 40 MHz as 40 MHz. 302 is 40 MHz whose primary
/// channel is the lower half, 303 the upper. Channels of 4.9 GHz are named by their width. 0 for an unknown channel.
std::uint32_t BandCode(std::uint32_t megahertz, std::uint32_t modes);

}  // namespace orvo

#pragma once

#include <cmath>
#include <cstdint>

#include "engine/wireless.h"
#include "statistics/value.h"
#include "util/rate_labels.h"

/// The values of the columns of radio channels, for every writer that shows them, as the engine counts them.
namespace orvo::wireless_channel {

inline Value Number(const WirelessChannelEntry& channel) {
  return Value::Signed(channel.channel);
}

inline Value Frequency(const WirelessChannelEntry& channel) {
  return Value::Unsigned(channel.frequency);
}

inline Value Band(const WirelessChannelEntry& channel) {
  return Value::Text(BandText(channel.band, channel.channel));
}

template <FrameCount WirelessChannelEntry::*frames, std::uint64_t FrameCount::*what>
constexpr Value Frames(const WirelessChannelEntry& channel) {
  return Value::Unsigned(channel.*frames.*what);
}

template <std::uint64_t WirelessChannelEntry::*field>
constexpr Value Count(const WirelessChannelEntry& channel) {
  return Value::Unsigned(channel.*field);
}

template <WirelessStrength WirelessChannelEntry::*what, std::uint8_t WirelessStrength::*field>
constexpr Value Percent(const WirelessChannelEntry& channel) {
  return Value::Unsigned(channel.*what.*field);
}

/// kNoDbm where nothing was measured.
template <WirelessStrength WirelessChannelEntry::*what, std::int8_t WirelessStrength::*field>
constexpr Value Dbm(const WirelessChannelEntry& channel) {
  return Value::Signed(channel.*what.*field);
}

/// The mean percentage of all packets; 0 where there are none.
template <std::uint64_t WirelessChannelEntry::*sum>
constexpr Value AveragePercent(const WirelessChannelEntry& channel) {
  const std::uint64_t packets = channel.total.packets;
  return Value::Real(packets == 0 ? 0 : static_cast<double>(channel.*sum) / static_cast<double>(packets));
}

/// The mean power of all packets in dBm, 10 * log10(milliwatts); nothing where none was measured, 0 where there are no
/// packets.
template <WirelessStrength WirelessChannelEntry::*what, double WirelessChannelEntry::*milliwatt_sum>
Value AverageDbm(const WirelessChannelEntry& channel) {
  if ((channel.*what).min_dbm == kNoDbm || channel.*milliwatt_sum == 0) return {};
  if (channel.total.packets == 0) return Value::Real(0);
  return Value::Real(10 * std::log10(channel.*milliwatt_sum / static_cast<double>(channel.total.packets)));
}

}  // namespace orvo::wireless_channel

#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

#include "engine/wireless.h"
#include "statistics/value.h"
#include "util/string_table.h"

/// The values of the columns of wireless nodes, for every writer that shows them. Strengths are given as the engine
/// measured them: what stands for one that is missing is the writer's to say.
namespace orvo::wireless_node {

template <std::uint64_t WirelessNodeEntry::*field>
constexpr Value Count(const WirelessNodeEntry& node) {
  return Value::Unsigned(node.*field);
}

template <std::uint64_t WirelessNodeEntry::*field>
constexpr Value Time(const WirelessNodeEntry& node) {
  return Value::Time(node.*field);
}

template <std::uint16_t WirelessNodeEntry::*field>
constexpr Value MaxSize(const WirelessNodeEntry& node) {
  return Value::Unsigned(node.*field);
}

/// 0 where there was no packet.
template <std::uint16_t WirelessNodeEntry::*field>
constexpr Value MinSize(const WirelessNodeEntry& node) {
  return Value::Unsigned(node.*field == kNoMinimumSize ? 0 : node.*field);
}

/// Whole bytes a packet; 0 where there was no packet.
template <std::uint64_t WirelessNodeEntry::*bytes, std::uint64_t WirelessNodeEntry::*packets>
constexpr Value AverageSize(const WirelessNodeEntry& node) {
  return Value::Unsigned(node.*packets == 0 ? 0 : node.*bytes / node.*packets);
}

template <WirelessStrength WirelessNodeEntry::*what, std::uint8_t WirelessStrength::*field>
constexpr Value Percent(const WirelessNodeEntry& node) {
  return Value::Unsigned(node.*what.*field);
}

/// kNoDbm where nothing was measured.
template <WirelessStrength WirelessNodeEntry::*what, std::int8_t WirelessStrength::*field>
constexpr Value Dbm(const WirelessNodeEntry& node) {
  return Value::Signed(node.*what.*field);
}

constexpr Value WepKey(const WirelessNodeEntry& node) {
  return Value::Unsigned(node.wep_key);
}

constexpr Value NetworkName(const WirelessNodeEntry& node) {
  return Value::Name(std::span(node.name).first(std::min<std::size_t>(node.name_length, node.name.size())));
}

/// What announces a network shows the channel that it announces, everything else the one on which it was seen last.
constexpr Value Channel(const WirelessNodeEntry& node) {
  const bool announces = node.type == kWirelessAccessPoint || node.type == kWirelessAdHoc;
  return Value::Unsigned(announces ? node.beacon_channel : node.current_channel);
}

/// From the earlier of the first times to the later of the last times. Nothing unless both directions have begun and
/// the end lies behind the start.
constexpr Value Duration(const WirelessNodeEntry& node) {
  const std::uint64_t start = std::min(node.first_time_sent, node.first_time_received);
  const std::uint64_t end = std::max(node.last_time_sent, node.last_time_received);
  if (start == 0 || end == 0 || end < start) return {};
  return Value::Duration(static_cast<std::int64_t>(end - start));
}

/// The name of a code, the first of which is 1; nothing for any other.
template <std::size_t count>
constexpr Value NameOfCode(std::uint32_t code, const std::string_view (&names)[count]) {
  return code >= 1 && code <= count ? Value::Text(names[code - 1]) : Value();
}

inline constexpr std::string_view kTypeNames[] = {"Admin", "AP", "ESSID", "STA", "ADHOC"};
inline constexpr std::string_view kEncryptionNames[] = {"WEP", "CKIP", "TKIP"};
inline constexpr std::string_view kAuthenticationNames[] = {"EAP", "LEAP", "PEAP", "EAPTLS"};

constexpr Value Type(const WirelessNodeEntry& node) {
  return NameOfCode(node.type, kTypeNames);
}

constexpr Value Encryption(const WirelessNodeEntry& node) {
  return NameOfCode(node.encryption, kEncryptionNames);
}

constexpr Value Authentication(const WirelessNodeEntry& node) {
  return NameOfCode(node.authentication, kAuthenticationNames);
}

inline Value Privacy(const WirelessNodeEntry& node) {
  return Value::Text(AsciiTextOf(node.privacy != 0 ? kStrTrue : kStrFalse));
}

inline Value BroadcastName(const WirelessNodeEntry& node) {
  return Value::Text(AsciiTextOf(node.broadcast_name != 0 ? kStrOn : kStrOff));
}

inline Value Trust(const WirelessNodeEntry& node) {
  const StringId text = node.trust == 1 ? kStrKnown : node.trust == 2 ? kStrTrusted : kStrUnknown;
  return Value::Text(AsciiTextOf(text));
}

/// A value that only what has sent something has: 0 for a node that has not.
template <Value (*value)(const WirelessNodeEntry&)>
constexpr Value IfSent(const WirelessNodeEntry& node) {
  return node.first_time_sent == 0 ? Value::Unsigned(0) : value(node);
}

/// Broadcast packets count as sent as soon as there are broadcast bytes.
constexpr Value BroadcastPackets(const WirelessNodeEntry& node) {
  return Value::Unsigned(node.first_time_sent == 0 && node.broadcast_bytes == 0 ? 0 : node.broadcast_packets);
}

}  // namespace orvo::wireless_node

#pragma once

#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "capture/decode/protocol_registry.h"
#include "capture/source/packet.h"
#include "engine/address.h"

namespace orvo::test {

/// Bytes put together by hand: every builder returns a header followed by its payload.
using Buffer = std::vector<std::uint8_t>;

inline Buffer operator+(Buffer front, const Buffer& back) {
  front.insert(front.end(), back.begin(), back.end());
  return front;
}

inline Buffer Be16(unsigned value) {
  return {static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
}

inline Buffer Le32(std::uint32_t value) {
  return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8),
          static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 24)};
}

inline Buffer Zeros(std::size_t count) {
  return Buffer(count);
}

/// 02:00:00:00:00:last
inline Buffer Mac(std::uint8_t last) {
  return {2, 0, 0, 0, 0, last};
}
inline Buffer BroadcastMac() {
  return Buffer(6, 0xFF);
}
inline Buffer MulticastMac() {
  return {1, 0, 0x5E, 0, 0, 0xFB};
}
/// 10.0.0.last
inline Buffer Ip4(std::uint8_t last) {
  return {10, 0, 0, last};
}
/// 2001:db8::last
inline Buffer Ip6(std::uint8_t last) {
  return Buffer{0x20, 1, 0x0D, 0xB8} + Zeros(11) + Buffer{last};
}

inline Buffer Ethernet(const Buffer& to, const Buffer& from, unsigned type, const Buffer& payload) {
  return to + from + Be16(type) + payload;
}
inline Buffer Vlan(unsigned type, const Buffer& payload) {
  return Be16(7) + Be16(type) + payload;
}
inline Buffer Ieee8023(const Buffer& to, const Buffer& from, const Buffer& payload) {
  return Ethernet(to, from, static_cast<unsigned>(payload.size()), payload);
}

/// `fragment` is the field of flags and offset; options are a multiple of 4 bytes.
inline Buffer Ipv4(const Buffer& from, const Buffer& to, std::uint8_t protocol, const Buffer& payload,
                   unsigned fragment = 0, const Buffer& options = {}) {
  auto header = static_cast<unsigned>(20 + options.size());
  return Buffer{static_cast<std::uint8_t>(0x40 | (header / 4)), 0} +
         Be16(static_cast<unsigned>(header + payload.size())) + Be16(1) + Be16(fragment) + Buffer{64, protocol} +
         Be16(0) + from + to + options + payload;
}
inline Buffer Ipv6(const Buffer& from, const Buffer& to, std::uint8_t next, const Buffer& payload) {
  return Buffer{0x60, 0, 0, 0} + Be16(static_cast<unsigned>(payload.size())) + Buffer{next, 64} + from + to + payload;
}
/// Hop-by-hop or destination options of `units` * 8 bytes.
inline Buffer Extension(std::uint8_t next, std::uint8_t units, const Buffer& payload) {
  return Buffer{next, static_cast<std::uint8_t>(units - 1)} + Zeros(units * 8U - 2) + payload;
}
inline Buffer FragmentHeader(std::uint8_t next, unsigned offset_and_more, const Buffer& payload) {
  return Buffer{next, 0} + Be16(offset_and_more) + Zeros(4) + payload;
}

inline Buffer Udp(unsigned from, unsigned to, const Buffer& payload = {}) {
  return Be16(from) + Be16(to) + Be16(static_cast<unsigned>(8 + payload.size())) + Be16(0) + payload;
}
inline Buffer Tcp(unsigned from, unsigned to, std::uint8_t flags = 0x10, const Buffer& payload = {}) {
  return Be16(from) + Be16(to) + Zeros(8) + Buffer{0x50, flags} + Zeros(6) + payload;
}
inline Buffer Icmp(std::uint8_t type, const Buffer& payload = {}) {
  return Buffer{type, 0} + Zeros(6) + payload;
}
inline Buffer Arp() {
  return Be16(1) + Be16(0x0800) + Buffer{6, 4} + Be16(1) + Zeros(20);
}

inline constexpr std::uint64_t kSecond = 1'000'000'000;
/// 2020-01-01 00:00 UTC
inline constexpr std::uint64_t kNewYear = (11'644'473'600ULL + 1'577'836'800ULL) * kSecond;

/// A packet over the frame, which must outlive it; captured whole.
inline Packet MakePacket(const Buffer& frame, std::uint64_t time = kNewYear) {
  Packet packet;
  packet.time = time;
  packet.bytes = frame;
  packet.original_length = static_cast<std::uint32_t>(frame.size());
  return packet;
}

inline PacketFacts Decoded(const Packet& packet) {
  PacketFacts facts;
  DecodePacket(packet, &facts);
  return facts;
}

/// Calls `take` with every beginning, in memory of exactly its length, where a sanitizer sees the first byte read too
/// many.
template <class Take>
void ForEachPrefix(const Buffer& bytes, Take take) {
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    Buffer prefix(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
    prefix.shrink_to_fit();
    take(std::as_const(prefix));
  }
}

/// Calls `take` so many times with three bytes changed at random, and now and then with less of them.
template <class Take>
void ForEachDamage(const Buffer& bytes, int rounds, Take take) {
  std::mt19937 random(static_cast<unsigned>(bytes.size()));
  for (int round = 0; round < rounds && !bytes.empty(); ++round) {
    Buffer changed = bytes;
    for (int i = 0; i < 3; ++i) changed[random() % changed.size()] = static_cast<std::uint8_t>(random());
    if (random() % 4 == 0) changed.resize(random() % (changed.size() + 1));
    changed.shrink_to_fit();
    take(std::as_const(changed));
  }
}

inline std::string Ascii(std::u16string_view text) {
  return {text.begin(), text.end()};
}

}  // namespace orvo::test

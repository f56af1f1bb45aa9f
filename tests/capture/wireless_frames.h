#pragma once

#include "tests/capture/frames.h"

namespace orvo::test {

inline Buffer Le16(unsigned value) {
  return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8)};
}

inline constexpr std::uint32_t kLinkWireless = 105;
inline constexpr std::uint32_t kLinkPrism = 119;
inline constexpr std::uint32_t kLinkRadiotap = 127;
inline constexpr std::uint32_t kLinkAvs = 163;
inline constexpr std::uint32_t kLinkPpi = 192;

// Bits of a frame's second byte.
inline constexpr std::uint8_t kToDsBit = 1;
inline constexpr std::uint8_t kFromDsBit = 2;
inline constexpr std::uint8_t kRetryBit = 8;
inline constexpr std::uint8_t kProtectedBit = 0x40;
inline constexpr std::uint8_t kOrderBit = 0x80;

inline Buffer ManagementFrame(std::uint8_t subtype, const Buffer& to, const Buffer& from, const Buffer& network,
                              const Buffer& body = {}, std::uint8_t flags = 0) {
  return Buffer{static_cast<std::uint8_t>(subtype << 4), flags} + Le16(0) + to + from + network + Le16(0) + body;
}
inline Buffer ControlFrame(std::uint8_t subtype, const Buffer& to, const Buffer& from = {}) {
  return Buffer{static_cast<std::uint8_t>(subtype << 4 | 4), 0} + Le16(0) + to + from;
}
/// Three addresses, as the frame has them; `more` is what follows the sequence control.
inline Buffer DataFrame(std::uint8_t flags, const Buffer& first, const Buffer& second, const Buffer& third,
                        const Buffer& more = {}, std::uint8_t subtype = 0, unsigned sequence = 0) {
  return Buffer{static_cast<std::uint8_t>(subtype << 4 | 8), flags} + Le16(0) + first + second + third +
         Le16(sequence) + more;
}

inline Buffer Snap(unsigned type, const Buffer& payload) {
  return Buffer{0xAA, 0xAA, 3, 0, 0, 0} + Be16(type) + payload;
}
inline Buffer IpPacket() {
  return Snap(0x0800, Ipv4(Ip4(1), Ip4(2), 17, Udp(5000, 53, Zeros(4))));
}

inline Buffer Element(std::uint8_t number, const Buffer& body) {
  return Buffer{number, static_cast<std::uint8_t>(body.size())} + body;
}
inline Buffer NameElement(const std::string& name) {
  return Element(0, Buffer(name.begin(), name.end()));
}
/// The body of a beacon or of an answer to a probe.
inline Buffer Announcement(unsigned capabilities, const Buffer& elements) {
  return Zeros(8) + Le16(100) + Le16(capabilities) + elements;
}

/// Fields in the order of the bits in `present`, padded by hand.
inline Buffer Radiotap(std::uint32_t present, const Buffer& fields, const Buffer& frame = {}) {
  return Buffer{0, 0} + Le16(static_cast<unsigned>(8 + fields.size())) + Le32(present) + fields + frame;
}
/// Flags, rate, channel, signal and noise.
inline Buffer Radio(unsigned megahertz, std::uint8_t rate, int signal, const Buffer& frame, std::uint8_t flags = 0) {
  unsigned kind = megahertz < 3000 ? 0x80 : 0x100;
  return Radiotap(
      0x6E, Buffer{flags, rate} + Le16(megahertz) + Le16(kind) + Buffer{static_cast<std::uint8_t>(signal), 161}, frame);
}

inline Packet WirelessPacket(const Buffer& frame, std::uint32_t link = kLinkWireless, std::uint64_t time = kNewYear) {
  Packet packet = MakePacket(frame, time);
  packet.link_type = link;
  return packet;
}

}  // namespace orvo::test

#pragma once

#include <cstdint>

#include "capture/decode/packet_facts.h"
#include "capture/source/packet.h"

namespace orvo {

/// What the header of a TCP segment says (RFC 9293 section 3.1).
struct TcpSegment {
  static constexpr std::uint8_t kFin = 1;
  static constexpr std::uint8_t kSyn = 2;
  static constexpr std::uint8_t kRst = 4;
  static constexpr std::uint8_t kAck = 16;

  std::uint32_t sequence = 0;
  std::uint32_t acknowledgement = 0;
  std::uint32_t length = 0;  ///< of the payload on the wire, however much of it was captured
  std::uint16_t window = 0;  ///< as in the header, not scaled
  std::uint8_t flags = 0;

  bool Has(std::uint8_t any) const { return (flags & any) != 0; }
  /// The first sequence number behind the segment; SYN and FIN take one each.
  std::uint32_t end() const { return sequence + length + (Has(kSyn) ? 1 : 0) + (Has(kFin) ? 1 : 0); }
};

/// False when the packet's innermost protocol is not TCP, when it is a fragment, whose length says nothing about the
/// segment's, and when its header was not captured whole.
bool ReadTcpSegment(const Packet& packet, const PacketFacts& facts, TcpSegment* segment);

}  // namespace orvo

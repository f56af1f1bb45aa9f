#include "capture/analysis/expert/tcp_segment.h"

namespace orvo {
namespace {

constexpr std::uint8_t kTcp = 6;
constexpr std::size_t kHeaderLength = 20;
constexpr std::size_t kIpv6HeaderLength = 40;

/// The length of the innermost datagram on the wire. A length of 0 stands for a frame that was recorded before the
/// interface cut it into segments: it goes on to the frame's end.
std::size_t DatagramLength(const Packet& packet, const PacketFacts& facts) {
  Bytes datagram = facts.datagram;
  std::size_t stated = datagram[0] >> 4 == 4 ? Read16(datagram, 2) : Read16(datagram, 4);
  if (stated != 0) return datagram[0] >> 4 == 4 ? stated : stated + kIpv6HeaderLength;
  auto before = static_cast<std::size_t>(datagram.data() - packet.bytes.data());
  return packet.original_length - before;
}

}  // namespace

bool ReadTcpSegment(const Packet& packet, const PacketFacts& facts, TcpSegment* segment) {
  Bytes header = facts.innermost;
  if (facts.ip_protocol != kTcp || !facts.has_ports || facts.is_fragment || header.size() < kHeaderLength) return false;
  std::size_t header_length = std::size_t{static_cast<unsigned>(header[12] >> 4)} * 4;
  auto before = static_cast<std::size_t>(header.data() - facts.datagram.data());
  std::size_t length = DatagramLength(packet, facts);
  if (header_length < kHeaderLength || length < before + header_length) return false;
  segment->sequence = Read32(header, 4);
  segment->acknowledgement = Read32(header, 8);
  segment->flags = header[13];
  segment->window = Read16(header, 14);
  segment->length = static_cast<std::uint32_t>(length - before - header_length);
  return true;
}

}  // namespace orvo

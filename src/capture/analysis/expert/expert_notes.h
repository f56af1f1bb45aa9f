#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "capture/analysis/expert/event_log.h"
#include "capture/analysis/expert/tcp_segment.h"
#include "capture/decode/packet_facts.h"
#include "capture/source/packet.h"

namespace orvo {

/// What FlowExpert has to know of a packet besides its PacketNote.
struct FlowNote {
  using IpAddress = std::array<std::uint8_t, 16>;
  static constexpr std::size_t kHead = 16;

  FlowNote() = default;
  /// For a packet that is of a flow.
  FlowNote(const Packet& packet, const PacketFacts& facts);

  /// The payload's first bytes, which is as far as anybody looks; empty for none at all.
  Bytes payload() const { return {head.data(), head_size}; }

  bool has_segment = false;  ///< of TCP, and one that ReadTcpSegment can read
  std::uint8_t ip_version = 0;
  std::uint8_t head_size = 0;
  std::uint16_t source_port = 0;
  std::uint16_t destination_port = 0;
  std::array<std::uint16_t, 2> applications{};  ///< as in PacketFacts
  TcpSegment segment;
  std::array<std::uint8_t, kHead> head{};
  std::array<IpAddress, 2> addresses{};  ///< of the sender and the receiver; an IPv4 address takes the first four bytes
};

/// What the expert analysis has to know of packets that follow each other, besides their notes. It needs their bytes no
/// more, and may go to another thread.
struct ExpertNotes {
  struct Entry {
    FlowNote flow;                  ///< left over from earlier packets where the packet is of no flow
    std::size_t events_so_far = 0;  ///< those below that come before the next packet
  };
  std::vector<Entry> packets;
  std::vector<EventRecord> events;  ///< that are of no flow
};

}  // namespace orvo

#include "capture/analysis/expert/expert_notes.h"

#include <algorithm>
#include <cstring>

namespace orvo {

FlowNote::FlowNote(const Packet& packet, const PacketFacts& facts)
    : ip_version(facts.datagram[0] >> 4),
      source_port(facts.source_port),
      destination_port(facts.destination_port),
      applications(facts.applications) {
  has_segment = ReadTcpSegment(packet, facts, &segment);
  const Bytes beginning = Within(facts.payload, kHead);
  head_size = static_cast<std::uint8_t>(beginning.size());
  std::ranges::copy(beginning, head.begin());
  const std::size_t length = ip_version == 4 ? 4 : 16;
  const std::uint8_t* source = facts.datagram.data() + (ip_version == 4 ? 12 : 8);
  std::memcpy(addresses[0].data(), source, length);
  std::memcpy(addresses[1].data(), source + length, length);
}

}  // namespace orvo

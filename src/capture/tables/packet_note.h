#pragma once

#include <array>
#include <cstdint>

#include "capture/decode/packet_facts.h"
#include "capture/source/packet.h"
#include "capture/tables/wireless_note.h"

namespace orvo {

/// What is counted of one packet. It needs neither the packet's bytes nor its facts any more, so that it can wait, or
/// go to another thread.
struct PacketNote {
  PacketNote() = default;
  PacketNote(const Packet& packet, const PacketFacts& facts, std::uint16_t counted_under)
      : time(packet.time),
        flow(facts.flow),
        bytes(packet.original_length),
        protocol(counted_under),
        tcp_flags(facts.tcp_flags),
        ip_protocol(facts.ip_protocol),
        pair_count(facts.pair_count),
        has_vlan_tag(facts.vlan_tags != 0),
        is_fragment(facts.is_fragment),
        is_icmp_error(facts.is_icmp_error),
        malformed(facts.malformed),
        cut_off(facts.cut_off),
        flow_names_network(facts.flow.serial != 0 && facts.network.data() == facts.datagram.data()),
        pairs(facts.pairs) {}

  /// To whom the frame itself is addressed.
  Delivery delivery() const { return pair_count != 0 ? pairs[0].delivery : Delivery::kUnicast; }

  // As in Packet and PacketFacts; all members without a word of their own.
  std::uint64_t time = 0;
  FlowMark flow;
  std::uint32_t bytes = 0;     ///< on the wire
  std::uint16_t protocol = 0;  ///< the place that the packet counts under
  std::uint8_t tcp_flags = 0;
  std::uint8_t ip_protocol = 0;
  std::uint8_t pair_count = 0;
  bool has_vlan_tag = false;
  bool is_fragment = false;
  bool is_icmp_error = false;
  bool malformed = false;
  bool cut_off = false;
  /// A TCP segment with bytes that its flow had before, or that were lost; what the expert analysis found.
  bool is_retransmission = false;
  bool flow_names_network = false;         ///< the flow's ends are those of the outermost datagram: there is no tunnel
  const WirelessNote* wireless = nullptr;  ///< of a wireless frame; kept by whoever keeps this
  std::array<AddressPair, PacketFacts::kMaxPairs> pairs;  ///< those beyond the count are left over
};

}  // namespace orvo

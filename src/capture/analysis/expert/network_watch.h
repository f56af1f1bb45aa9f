#pragma once

#include <cstdint>
#include <vector>

#include "capture/analysis/expert/address_claims.h"
#include "capture/analysis/expert/event_log.h"
#include "capture/decode/packet_facts.h"
#include "capture/source/packet.h"

namespace orvo {

/// Finds the events that are of no flow: conflicts of addresses in ARP and in neighbour discovery, errors that ICMP
/// tells of, fragments, and floods of broadcasts.
class NetworkWatch {
 public:
  NetworkWatch();

  /// Appends what it finds.
  void Inspect(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events);

 private:
  void InspectArp(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events);
  void InspectIcmp(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events);
  void InspectIcmpv6(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events);
  void InspectNeighbour(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events);
  void NoteClaim(const AddressRecord& address, const std::uint8_t* physical, std::uint64_t time,
                 std::vector<EventRecord>* events);
  void CountBroadcast(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events);

  std::uint16_t arp_;  // identifiers in the registry
  std::uint16_t icmp_;
  std::uint16_t icmpv6_;
  AddressClaims claims_;
  std::uint64_t second_ = 0;      // of the broadcasts that are being counted
  std::uint64_t broadcasts_ = 0;  // within that second
};

}  // namespace orvo

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "capture/analysis/expert/event_log.h"
#include "capture/decode/packet_facts.h"
#include "capture/source/packet.h"
#include "capture/tables/keyed_hash.h"
#include "engine/address.h"

namespace orvo {

/// Finds what goes wrong on the air: senders that have to repeat much or are hardly heard, and floods of frames that
/// take stations from their network.
///
/// A sender is judged by every kFrames frames of data that it sent to one receiver, and reported when it turns bad, not
/// again until it was good in between. Nodes share a fixed number of places, so that memory stays within 256 KB: one
/// that meets another in its place forgets it.
class WirelessWatch {
 public:
  static constexpr std::uint16_t kFrames = 50;

  /// Appends what it finds.
  void Inspect(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events);

 private:
  struct Node {
    AddressRecord address;
    std::uint64_t second = 0;     ///< of the farewells
    std::uint32_t farewells = 0;  ///< within that second, of the network that has this address
    std::int32_t level_sum = 0;   ///< dBm
    std::uint16_t levels = 0;
    std::uint16_t frames = 0;
    std::uint16_t retries = 0;
    bool repeats = false;  ///< as it was judged last
    bool is_weak = false;
  };
  static constexpr std::size_t kPlaces = 4096;
  static_assert(kPlaces * sizeof(Node) <= std::size_t{256} * 1024);

  Node& NodeOf(const AddressRecord& address);
  void CountData(const Packet& packet, const WirelessFacts& wireless, std::vector<EventRecord>* events);
  void CountFarewell(const Packet& packet, const WirelessFacts& wireless, std::vector<EventRecord>* events);

  KeyedHash hash_;
  std::vector<Node> nodes_;  // empty until the first frame that is counted, then kPlaces
};

}  // namespace orvo

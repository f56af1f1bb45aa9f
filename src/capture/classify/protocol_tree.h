#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "capture/decode/packet_facts.h"

namespace orvo {

/// Every place that a protocol was met at below others: DNS in UDP in IPv4 in Ethernet is one place, DNS in TCP
/// another. A place has a number of its own, from which its chain follows for as long as the process runs; number 0
/// stands for no place. Numbers are drawn from the names in the chain, so that reports made at different times give a
/// protocol the same one, unless two places that one process meets draw the same: the second of them moves on.
/// A protocol stands at most twice in one chain, and the number of places is limited, so that tunnels in tunnels end:
/// what goes beyond counts as the last place that there is. Any thread may use it.
class ProtocolTree {
 public:
  static ProtocolTree& Get();

  /// The place of the innermost protocol that was recognised: those of the flow, or else the application of the ports,
  /// stand below the transport. Makes places that are new.
  std::uint16_t Classify(const PacketFacts& facts);

  /// 0 for a place at the top of the tree and for an unknown number.
  std::uint16_t parent(std::uint16_t number) const { return At(number).parent; }
  /// Empty for an unknown number. ASCII.
  std::string_view name(std::uint16_t number) const;
  bool Contains(std::uint16_t number) const { return At(number).protocol != 0; }

 private:
  /// The table of places is never more than half full, so that the search for one is short.
  static constexpr std::size_t kNumbers = 65536;
  static constexpr std::size_t kMaxPlaces = kNumbers / 2;

  struct Place {
    std::uint16_t parent = 0;
    std::uint16_t protocol = 0;  ///< 0 where there is no place
    bool operator==(const Place&) const = default;
  };

  ProtocolTree();
  Place At(std::uint16_t number) const { return places_[number].load(std::memory_order_acquire); }
  /// The number of a place that is there, or the free one that it is to get.
  std::uint16_t Number(Place place) const;
  std::uint16_t Child(std::uint16_t parent, std::uint16_t protocol);
  std::uint16_t AddChild(Place place);
  bool MayFollow(Place place) const;

  std::vector<std::uint32_t> name_hashes_;        // by protocol
  std::unique_ptr<std::atomic<Place>[]> places_;  // open addressing; a place never changes once it is there
  std::size_t count_ = 0;
  std::mutex adding_;
};

}  // namespace orvo

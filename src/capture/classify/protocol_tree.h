#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>

#include "capture/decode/packet_facts.h"

namespace orvo {

/// Every place that a protocol was met at below others: DNS in UDP in IPv4 in Ethernet is one place, DNS in TCP
/// another. A place has a number of its own, from which its chain follows, for as long as the process runs; number 0
/// stands for no place. A protocol stands at most twice in one chain, and there are at most 65535 places, so that
/// tunnels in tunnels end: what goes beyond counts as the last place that there is. Any thread may use it.
class ProtocolTree {
 public:
  static ProtocolTree& Get();

  /// The place of the innermost protocol that was recognised: those of the flow, or else the application of the ports,
  /// stand below the transport. Makes places that are new.
  std::uint16_t Classify(const PacketFacts& facts);

  /// 0 for a place at the top of the tree and for an unknown number.
  std::uint16_t parent(std::uint16_t number) const { return Contains(number) ? places_[number].parent : 0; }
  /// Empty for an unknown number. ASCII.
  std::string_view name(std::uint16_t number) const;
  bool Contains(std::uint16_t number) const { return number != 0 && number < count(); }
  /// Numbers run from 1 to count() - 1.
  std::size_t count() const { return count_.load(std::memory_order_acquire); }

 private:
  static constexpr std::size_t kMaxPlaces = 65536;
  static constexpr std::size_t kSlots = 2 * kMaxPlaces;

  struct Place {
    std::uint16_t parent = 0;
    std::uint16_t protocol = 0;
  };
  using Slot = std::atomic<std::uint16_t>;

  ProtocolTree();
  std::uint16_t Child(std::uint16_t parent, std::uint16_t protocol);
  std::uint16_t AddChild(std::uint16_t parent, std::uint16_t protocol);
  /// The slot that holds the place, or the empty one where it belongs.
  Slot& FindSlot(std::uint16_t parent, std::uint16_t protocol);
  bool MayFollow(std::uint16_t parent, std::uint16_t protocol) const;

  // Places are written once, before their number is published in the count and in a slot, and never change.
  std::unique_ptr<Place[]> places_;
  std::unique_ptr<Slot[]> slots_;  // open addressing over (parent, protocol), never more than half full
  std::atomic<std::size_t> count_{1};
  std::mutex adding_;
};

}  // namespace orvo

#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "capture/decode/packet_facts.h"

namespace orvo {

/// Every place that a protocol can stand at below others: DNS in UDP in IPv4 in Ethernet is one place, DNS in TCP
/// another. Each place has a number of its own, the same in every run of one build, from which its chain follows;
/// number 0 stands for no place. A protocol stands at most twice in one chain, so that tunnels in tunnels end.
/// Immutable once made, and therefore read from any thread.
class ProtocolTree {
 public:
  /// Made on first use from the registered protocols.
  static const ProtocolTree& Get();

  /// The place of the innermost protocol that was recognised, the application of the ports included.
  std::uint16_t Classify(const PacketFacts& facts) const;

  /// 0 for a place at the top of the tree and for an unknown number.
  std::uint16_t parent(std::uint16_t number) const { return number < places_.size() ? places_[number].parent : 0; }
  /// Empty for an unknown number. ASCII.
  std::string_view name(std::uint16_t number) const;
  bool Contains(std::uint16_t number) const { return number != 0 && number < places_.size(); }
  /// Numbers run from 1 to count() - 1.
  std::size_t count() const { return places_.size(); }

 private:
  struct Place {
    std::uint16_t parent = 0;
    std::uint16_t protocol = 0;
  };
  struct Slot {
    std::uint32_t key = 0;
    std::uint16_t place = 0;
  };

  ProtocolTree();
  void Grow();
  void AddChild(std::uint16_t parent, std::uint16_t protocol);
  std::uint16_t Child(std::uint16_t parent, std::uint16_t protocol) const;
  static std::size_t SlotOf(std::uint32_t key) { return (key * 0x9E3779B1U) >> 8; }

  std::vector<Place> places_;
  std::vector<Slot> slots_;  // open addressing over (parent, protocol), a power of two
  std::uint16_t unknown_ = 0;
};

}  // namespace orvo

#pragma once

#include <cstdint>

#include "platform/unknown.h"

namespace orvo {

inline constexpr std::uint16_t kNoMinimumSize = 0xFFFF;

/// Traffic of one address. Times are nanoseconds since 1601-01-01 UTC, 0 for never; sizes are frame lengths in bytes.
struct NodeEntry {
  std::uint64_t first_time_sent = 0;
  std::uint64_t last_time_sent = 0;
  std::uint64_t first_time_received = 0;
  std::uint64_t last_time_received = 0;
  std::uint64_t packets_sent = 0;
  std::uint64_t bytes_sent = 0;
  std::uint64_t packets_received = 0;
  std::uint64_t bytes_received = 0;
  std::uint64_t broadcast_packets = 0;  ///< sent to a broadcast address
  std::uint64_t broadcast_bytes = 0;
  std::uint64_t multicast_packets = 0;  ///< sent to a multicast address
  std::uint64_t multicast_bytes = 0;
  std::uint32_t address = 0;  ///< index in the address table
  std::uint16_t min_size_sent = kNoMinimumSize;
  std::uint16_t max_size_sent = 0;
  std::uint16_t min_size_received = kNoMinimumSize;
  std::uint16_t max_size_received = 0;

  /// What ranks a node among the top talkers.
  std::uint64_t activity() const { return packets_sent + packets_received; }
  std::uint64_t traffic() const { return bytes_sent + bytes_received; }
};

/// The interface of two categories: all nodes, and the table from which top talkers are chosen.
class INodeStats : public IUnknown {
 public:
  static constexpr Guid kIid = "96B3CE97-6186-4735-B104-8D3090809CB0"_guid;

  virtual Status GetCount(std::uint32_t* count) = 0;
  /// Entry by index, valid while this object is held; E_INVALIDARG beyond the count.
  virtual Status GetEntry(std::uint32_t index, const NodeEntry** entry) = 0;
  /// Entry of an address; S_FALSE and null when the address has none.
  virtual Status FindByAddress(std::uint32_t address, const NodeEntry** entry) = 0;

 protected:
  ~INodeStats() = default;
};

/// Traffic of one address behind another: a physical address as the path of a logical one.
struct HierarchyEntry {
  std::uint32_t address = 0;  ///< the physical address
  std::uint32_t parent = 0;   ///< the logical address, kNoAddress for the physical address as a whole
  std::uint64_t packets_sent = 0;
  std::uint64_t bytes_sent = 0;
  std::uint64_t packets_received = 0;
  std::uint64_t bytes_received = 0;
};

class IHierarchyStats : public IUnknown {
 public:
  static constexpr Guid kIid = "30086661-D9C5-49B4-AE89-A8D29CA4DA67"_guid;

  virtual Status GetCount(std::uint32_t* count) = 0;
  virtual Status GetEntry(std::uint32_t index, const HierarchyEntry** entry) = 0;

 protected:
  ~IHierarchyStats() = default;
};

}  // namespace orvo

#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "capture/tables/address_table.h"
#include "capture/tables/conversation_table.h"
#include "capture/tables/counters.h"
#include "capture/tables/graph_samples.h"
#include "capture/tables/packet_note.h"
#include "capture/tables/paged_vector.h"
#include "capture/tables/route_table.h"
#include "capture/tables/row_index.h"
#include "capture/tables/traffic_history.h"
#include "capture/tables/wireless_tables.h"
#include "engine/nodes.h"
#include "engine/protocols.h"

namespace orvo {

/// How many rows the tables take; packets beyond that count everywhere else, and the summary says how many there were.
struct TableLimits {
  std::size_t addresses = 2'000'000;
  std::size_t hierarchy = 4'000'000;
  std::size_t conversations = 4'000'000;
  WirelessLimits wireless{};
};

/// All tables as of one moment.
struct FrozenTables {
  Counters counters;
  FrozenAddresses addresses;
  FrozenTable<std::uint32_t> node_rows;  ///< by address index: its row among the nodes, or kNoRow
  FrozenTable<NodeEntry> nodes;
  FrozenTable<HierarchyEntry> hierarchy;
  FrozenTable<ProtocolEntry> protocols;
  FrozenConversations conversations;
  FrozenHistory history;
  FrozenGraphs graphs;
  std::shared_ptr<const FrozenWireless> wireless;  ///< null for a wired medium
};

/// The statistics of a capture. One thread writes; freezing needs the same exclusion as writing, reading what was
/// frozen needs none.
class StatisticsTables {
 public:
  explicit StatisticsTables(const TableLimits& limits, const std::shared_ptr<const TrustList>& trust = nullptr);

  /// Counts packets; the more at a time, the faster it goes, up to some hundred.
  void Count(std::span<const PacketNote> packets);
  /// How many packets the source has lost so far.
  void SetDropped(std::uint64_t packets) { counters_.dropped = packets; }
  /// What has become of flows so far, resets left out of account.
  void SetFlows(const FlowCounts& flows) { counters_.flows = (flows_ = flows).Since(flows_at_reset_); }
  /// Starts over, but keeps the addresses under their indices.
  void Reset();

  /// Counted since the last reset.
  std::uint64_t packets() const { return counters_.total.packets; }
  /// The present counts without freezing anything.
  Counters Summary() const;
  FrozenTables Freeze();

 private:
  void Prefetch(const PacketNote& packet);
  void Count(const PacketNote& packet);
  void CountTotals(const PacketNote& packet);
  /// The row of the protocol.
  std::uint32_t CountProtocol(std::uint16_t number, std::uint64_t bytes);
  void CountRows(const PacketNote& packet, const PacketRows& rows);
  static void CountSent(const PacketNote& packet, Delivery delivery, NodeEntry* node);
  static void CountReceived(const PacketNote& packet, NodeEntry* node);
  void MoveRoute(const PacketNote& packet, std::uint32_t protocol_key, Route* route);

  /// Finds the rows that the packet counts in, and makes those that are missing. False when one was refused by a full
  /// table, which is counted.
  bool FindRows(const PacketNote& packet, std::uint32_t protocol_key, PacketRows* rows);
  std::uint32_t NodeRow(std::uint32_t address, std::uint8_t type);
  std::uint32_t HierarchyRow(std::uint32_t physical, std::uint32_t logical);

  TableLimits limits_;
  Counters counters_;
  FlowCounts flows_;
  FlowCounts flows_at_reset_;
  std::uint64_t previous_time_ = 0;
  AddressTable addresses_;
  PagedVector<std::uint32_t> node_rows_;
  PagedVector<NodeEntry> nodes_;
  std::array<std::uint64_t, kAddressTypes> node_counts_{};
  KeyedHash hierarchy_hash_;
  RowIndex hierarchy_index_;
  PagedVector<HierarchyEntry> hierarchy_;
  std::vector<std::uint32_t> protocol_rows_;  // by protocol number
  PagedVector<ProtocolEntry> protocols_;
  ConversationTable conversations_;
  RouteTable routes_;
  TrafficHistory history_;
  GraphSamples graphs_;
  WirelessTables wireless_;
};

}  // namespace orvo

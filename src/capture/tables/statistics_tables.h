#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "capture/decode/packet_facts.h"
#include "capture/source/packet.h"
#include "capture/tables/address_table.h"
#include "capture/tables/conversation_table.h"
#include "capture/tables/counters.h"
#include "capture/tables/graph_samples.h"
#include "capture/tables/paged_vector.h"
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
  WirelessLimits wireless;
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

  /// Counts one packet under the protocol of that number.
  void Count(const Packet& packet, const PacketFacts& facts, std::uint16_t protocol);
  /// How many packets the source has lost so far.
  void SetDropped(std::uint64_t packets) { counters_.dropped = packets; }
  /// What has become of flows so far, resets left out of account.
  void SetFlows(const FlowCounts& flows) { counters_.flows = (flows_ = flows).Since(flows_at_reset_); }
  /// Starts over, but keeps the addresses under their indices.
  void Reset();

  /// The present counts without freezing anything.
  Counters Summary() const;
  FrozenTables Freeze();

 private:
  void CountTotals(const Packet& packet, const PacketFacts& facts);
  /// The row of the protocol.
  std::uint32_t CountProtocol(std::uint16_t number, std::uint64_t bytes);
  void CountNodes(const Packet& packet, const AddressPair& pair, std::uint32_t source, std::uint32_t destination);
  bool CountHierarchy(std::uint32_t physical, std::uint32_t logical, bool sent, std::uint64_t bytes);
  std::uint32_t NodeRow(std::uint32_t address, std::uint8_t type);

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
  TrafficHistory history_;
  GraphSamples graphs_;
  WirelessTables wireless_;
};

}  // namespace orvo

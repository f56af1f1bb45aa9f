#include "capture/tables/statistics_tables.h"

#include <algorithm>
#include <limits>

namespace orvo {
namespace {

/// The field's largest value stands for "none", so that a longer frame counts as one byte less.
std::uint16_t SizeField(std::uint64_t length) {
  return static_cast<std::uint16_t>(std::min<std::uint64_t>(length, kNoMinimumSize - 1));
}

/// Widens a span of times, of which 0 stands for none, to hold one more.
void Widen(std::uint64_t* first, std::uint64_t* last, std::uint64_t time) {
  if (*first == 0 || time < *first) *first = time;
  *last = std::max(*last, time);
}

const AddressRecord& EndOf(const AddressPair& pair, std::size_t end) {
  return end == 0 ? pair.source : pair.destination;
}

template <class Table>
void PrefetchRow(const Table& table, std::uint32_t row) {
  if (row != kNoRow) table.Prefetch(row);
}

}  // namespace

StatisticsTables::StatisticsTables(const TableLimits& limits, const std::shared_ptr<const TrustList>& trust)
    : limits_(limits),
      addresses_(limits.addresses),
      protocol_rows_(std::size_t{std::numeric_limits<std::uint16_t>::max()} + 1, kNoRow),
      conversations_(limits.conversations),
      wireless_(limits.wireless, trust) {}

void StatisticsTables::Count(std::span<const PacketNote> packets) {
  // Some packets run ahead, so that what they need is on its way when it is their turn.
  constexpr std::size_t kAhead = 12;
  const std::size_t count = packets.size();
  for (std::size_t i = 0; i < count + 2 * kAhead; ++i) {
    if (i < count) routes_.Prefetch(packets[i].flow);
    if (i >= kAhead && i - kAhead < count) Prefetch(packets[i - kAhead]);
    if (i >= 2 * kAhead) Count(packets[i - 2 * kAhead]);
  }
}

/// Begins to fetch what Count will look at first.
void StatisticsTables::Prefetch(const PacketNote& packet) {
  if (Route::MayLead(packet)) {
    const Route& route = routes_.At(packet.flow);
    if (route.Leads(packet)) {
      const PacketRows& rows = route.rows;
      for (std::uint32_t row : rows.nodes) PrefetchRow(nodes_, row);
      for (std::uint32_t row : rows.hierarchy) PrefetchRow(hierarchy_, row);
      for (std::uint32_t row : rows.conversations) PrefetchRow(conversations_, row);
      return;
    }
  }
  for (std::size_t i = 0; i < packet.pair_count; ++i) {
    addresses_.Prefetch(packet.pairs[i].source);
    addresses_.Prefetch(packet.pairs[i].destination);
  }
}

void StatisticsTables::Count(const PacketNote& packet) {
  CountTotals(packet);
  if (packet.wireless) counters_.unlisted_wireless += !wireless_.Count(*packet.wireless, &addresses_);
  const std::uint32_t protocol_row = CountProtocol(packet.protocol, packet.bytes);
  const std::uint32_t protocol_key = protocols_[protocol_row].key;
  history_.Add(packet.time, packet.bytes);
  graphs_.Add(packet, protocol_row);
  if (!Route::MayLead(packet)) {
    PacketRows rows;
    FindRows(packet, protocol_key, &rows);
    CountRows(packet, rows);
    return;
  }
  Route& route = routes_.At(packet.flow);
  if (!route.Leads(packet)) {
    PacketRows rows;
    if (FindRows(packet, protocol_key, &rows)) route.Lead(packet, rows);
    CountRows(packet, rows);
    return;
  }
  if (route.protocol != packet.protocol) MoveRoute(packet, protocol_key, &route);
  CountRows(packet, route.rows);
}

/// The flow was found to carry something else than its first packets were counted under: only conversations differ. One
/// that is refused is tried again with every packet, since it counts as refused for each.
void StatisticsTables::MoveRoute(const PacketNote& packet, std::uint32_t protocol_key, Route* route) {
  bool listed = true;
  for (std::size_t i = 0; i < packet.pair_count; ++i) {
    ConversationEndpoints ends{nodes_[route->rows.nodes[2 * i]].address, nodes_[route->rows.nodes[2 * i + 1]].address,
                               protocol_key};
    std::uint32_t& row = route->rows.conversations[i];
    row = conversations_.Row(ends, packet.pairs[i].source.type);
    listed &= row != kNoRow;
  }
  counters_.unlisted_conversations += !listed;
  if (listed) route->protocol = packet.protocol;
}

bool StatisticsTables::FindRows(const PacketNote& packet, std::uint32_t protocol_key, PacketRows* rows) {
  bool addresses_listed = true;
  bool conversations_listed = true;
  bool rows_listed = true;
  std::array<std::uint32_t, 2> physical{kNoAddress, kNoAddress};
  for (std::size_t i = 0; i < packet.pair_count; ++i) {
    const AddressPair& pair = packet.pairs[i];
    const std::array<std::uint32_t, 2> ends{addresses_.Intern(pair.source), addresses_.Intern(pair.destination)};
    const bool is_physical = pair.source.type == kAddressPhysical;
    if (is_physical) physical = ends;
    for (std::size_t end = 0; end < ends.size(); ++end) {
      if (ends[end] != kNoAddress) rows->nodes[2 * i + end] = NodeRow(ends[end], EndOf(pair, end).type);
    }
    const bool both = ends[0] != kNoAddress && ends[1] != kNoAddress;
    addresses_listed = addresses_listed && (both || !pair.names_both_ends());
    // Both ends have node entries by now, so that a listed conversation never lacks one.
    if (both) {
      rows->conversations[i] = conversations_.Row({ends[0], ends[1], protocol_key}, pair.source.type);
      conversations_listed &= rows->conversations[i] != kNoRow;
    }
    for (std::size_t end = 0; end < ends.size(); ++end) {
      if (ends[end] == kNoAddress || physical[end] == kNoAddress) continue;
      std::uint32_t& row = rows->hierarchy[2 * i + end];
      row = HierarchyRow(physical[end], is_physical ? kNoAddress : ends[end]);
      rows_listed &= row != kNoRow;
    }
  }
  counters_.unlisted_addresses += !addresses_listed;
  counters_.unlisted_conversations += !conversations_listed;
  counters_.unlisted_hierarchy += !rows_listed;
  return addresses_listed && conversations_listed && rows_listed;
}

void StatisticsTables::CountRows(const PacketNote& packet, const PacketRows& rows) {
  for (std::size_t i = 0; i < packet.pair_count; ++i) {
    const std::array<std::uint32_t, 2> nodes{rows.nodes[2 * i], rows.nodes[2 * i + 1]};
    if (nodes[0] != kNoRow) CountSent(packet, packet.pairs[i].delivery, &nodes_.Edit(nodes[0]));
    if (nodes[1] != kNoRow) CountReceived(packet, &nodes_.Edit(nodes[1]));
    if (rows.conversations[i] != kNoRow) conversations_.Count(rows.conversations[i], packet.bytes);
    if (rows.hierarchy[2 * i] != kNoRow) {
      HierarchyEntry& entry = hierarchy_.Edit(rows.hierarchy[2 * i]);
      ++entry.packets_sent;
      entry.bytes_sent += packet.bytes;
    }
    if (rows.hierarchy[2 * i + 1] != kNoRow) {
      HierarchyEntry& entry = hierarchy_.Edit(rows.hierarchy[2 * i + 1]);
      ++entry.packets_received;
      entry.bytes_received += packet.bytes;
    }
  }
}

void StatisticsTables::CountTotals(const PacketNote& packet) {
  std::uint64_t bytes = packet.bytes;
  Counters& c = counters_;
  c.out_of_order += packet.time < previous_time_;
  previous_time_ = packet.time;
  Widen(&c.first_time, &c.last_time, packet.time);
  c.shortest = c.total.packets == 0 ? bytes : std::min(c.shortest, bytes);
  c.longest = std::max(c.longest, bytes);
  c.total.Add(bytes);
  ++c.sizes[SizeBucket(bytes)];
  c.malformed += packet.malformed;
  c.cut_off += packet.cut_off;
  c.tcp_fin += packet.tcp_flags & 1U;
  c.tcp_syn += (packet.tcp_flags >> 1) & 1U;
  c.tcp_reset += (packet.tcp_flags >> 2) & 1U;
  if (packet.has_vlan_tag) c.vlan.Add(bytes);
  if (packet.is_fragment) c.fragments.Add(bytes);
  if (packet.is_icmp_error) {
    c.icmp_errors.Add(bytes);
    c.last_icmp_error = std::max(c.last_icmp_error, packet.time);
  }
  if (packet.delivery() == Delivery::kBroadcast) c.broadcast.Add(bytes);
  if (packet.delivery() == Delivery::kMulticast) c.multicast.Add(bytes);
}

std::uint32_t StatisticsTables::CountProtocol(std::uint16_t number, std::uint64_t bytes) {
  std::uint32_t& row = protocol_rows_[number];
  if (row == kNoRow) {
    ProtocolEntry added;
    added.key = addresses_.Intern(ProtocolRecord(number));
    protocols_.Append(added);
    row = static_cast<std::uint32_t>(protocols_.size() - 1);
  }
  ProtocolEntry& entry = protocols_.Edit(row);
  ++entry.packets;
  entry.bytes += bytes;
  return row;
}

std::uint32_t StatisticsTables::NodeRow(std::uint32_t address, std::uint8_t type) {
  while (node_rows_.size() <= address) node_rows_.Append(kNoRow);
  std::uint32_t row = node_rows_[address];
  if (row == kNoRow) {
    NodeEntry added;
    added.address = address;
    nodes_.Append(added);
    row = static_cast<std::uint32_t>(nodes_.size() - 1);
    node_rows_.Edit(address) = row;
    ++node_counts_[type % kAddressTypes];
  }
  return row;
}

void StatisticsTables::CountSent(const PacketNote& packet, Delivery delivery, NodeEntry* node) {
  const std::uint64_t bytes = packet.bytes;
  const std::uint16_t size = SizeField(bytes);
  Widen(&node->first_time_sent, &node->last_time_sent, packet.time);
  ++node->packets_sent;
  node->bytes_sent += bytes;
  node->min_size_sent = std::min(node->min_size_sent, size);
  node->max_size_sent = std::max(node->max_size_sent, size);
  if (delivery == Delivery::kBroadcast) {
    ++node->broadcast_packets;
    node->broadcast_bytes += bytes;
  } else if (delivery == Delivery::kMulticast) {
    ++node->multicast_packets;
    node->multicast_bytes += bytes;
  }
}

void StatisticsTables::CountReceived(const PacketNote& packet, NodeEntry* node) {
  const std::uint64_t bytes = packet.bytes;
  const std::uint16_t size = SizeField(bytes);
  Widen(&node->first_time_received, &node->last_time_received, packet.time);
  ++node->packets_received;
  node->bytes_received += bytes;
  node->min_size_received = std::min(node->min_size_received, size);
  node->max_size_received = std::max(node->max_size_received, size);
}

std::uint32_t StatisticsTables::HierarchyRow(std::uint32_t physical, std::uint32_t logical) {
  std::uint64_t hash = hierarchy_hash_(physical, logical);
  std::uint32_t row = hierarchy_index_.Find(hash, [&](std::uint32_t candidate) {
    return hierarchy_[candidate].address == physical && hierarchy_[candidate].parent == logical;
  });
  if (row != kNoRow || hierarchy_.size() >= limits_.hierarchy) return row;
  row = static_cast<std::uint32_t>(hierarchy_.size());
  HierarchyEntry added;
  added.address = physical;
  added.parent = logical;
  hierarchy_index_.Reserve();
  hierarchy_.Append(added);
  hierarchy_index_.Add(hash, row);
  return row;
}

void StatisticsTables::Reset() {
  StatisticsTables fresh(limits_);
  std::swap(fresh.addresses_, addresses_);
  wireless_.Reset();
  std::swap(fresh.wireless_, wireless_);
  fresh.counters_.dropped = counters_.dropped;
  fresh.flows_ = fresh.flows_at_reset_ = flows_;
  *this = std::move(fresh);
}

Counters StatisticsTables::Summary() const {
  Counters counters = counters_;
  counters.physical_nodes = node_counts_[kAddressPhysical];
  counters.ipv4_nodes = node_counts_[kAddressIp];
  counters.ipv6_nodes = node_counts_[kAddressIpv6];
  counters.protocols = protocols_.size();
  counters.conversations = conversations_.size();
  return counters;
}

FrozenTables StatisticsTables::Freeze() {
  return {Summary(),           addresses_.Freeze(),     node_rows_.Freeze(), nodes_.Freeze(),  hierarchy_.Freeze(),
          protocols_.Freeze(), conversations_.Freeze(), history_.Freeze(),   graphs_.Freeze(), wireless_.Freeze()};
}

}  // namespace orvo

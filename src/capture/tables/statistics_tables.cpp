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

}  // namespace

StatisticsTables::StatisticsTables(const TableLimits& limits, const std::shared_ptr<const TrustList>& trust)
    : limits_(limits),
      addresses_(limits.addresses),
      protocol_rows_(std::size_t{std::numeric_limits<std::uint16_t>::max()} + 1, kNoRow),
      conversations_(limits.conversations),
      wireless_(limits.wireless, trust) {}

void StatisticsTables::Count(const Packet& packet, const PacketFacts& facts, std::uint16_t protocol) {
  std::uint64_t bytes = packet.original_length;
  CountTotals(packet, facts);
  std::uint32_t protocol_row = CountProtocol(protocol, bytes);
  std::uint32_t protocol_key = protocols_[protocol_row].key;
  history_.Add(packet.time, bytes);
  graphs_.Add(packet.time, bytes, facts, protocol_row);

  bool addresses_listed = true;
  bool conversations_listed = true;
  bool rows_listed = true;
  std::uint32_t physical_source = kNoAddress;
  std::uint32_t physical_destination = kNoAddress;
  for (std::size_t i = 0; i < facts.pair_count; ++i) {
    const AddressPair& pair = facts.pairs[i];
    std::uint32_t source = addresses_.Intern(pair.source);
    std::uint32_t destination = addresses_.Intern(pair.destination);
    CountNodes(packet, pair, source, destination);
    bool both = source != kNoAddress && destination != kNoAddress;
    addresses_listed = addresses_listed && (both || !pair.names_both_ends());
    // Both ends have node entries by now, so that a listed conversation never lacks one.
    if (both) {
      conversations_listed &= conversations_.Count({source, destination, protocol_key}, pair.source.type, bytes);
    }
    if (pair.source.type == kAddressPhysical) {
      physical_source = source;
      physical_destination = destination;
      rows_listed &= CountHierarchy(source, kNoAddress, true, bytes);
      rows_listed &= CountHierarchy(destination, kNoAddress, false, bytes);
    } else {
      if (source != kNoAddress) rows_listed &= CountHierarchy(physical_source, source, true, bytes);
      if (destination != kNoAddress) rows_listed &= CountHierarchy(physical_destination, destination, false, bytes);
    }
  }
  if (facts.wireless.is_present) counters_.unlisted_wireless += !wireless_.Count(packet, facts, &addresses_);
  counters_.unlisted_addresses += !addresses_listed;
  counters_.unlisted_conversations += !conversations_listed;
  counters_.unlisted_hierarchy += !rows_listed;
}

void StatisticsTables::CountTotals(const Packet& packet, const PacketFacts& facts) {
  std::uint64_t bytes = packet.original_length;
  Counters& c = counters_;
  c.out_of_order += packet.time < previous_time_;
  previous_time_ = packet.time;
  Widen(&c.first_time, &c.last_time, packet.time);
  c.shortest = c.total.packets == 0 ? bytes : std::min(c.shortest, bytes);
  c.longest = std::max(c.longest, bytes);
  c.total.Add(bytes);
  ++c.sizes[SizeBucket(bytes)];
  c.malformed += facts.malformed;
  c.cut_off += facts.cut_off;
  c.tcp_fin += facts.tcp_flags & 1U;
  c.tcp_syn += (facts.tcp_flags >> 1) & 1U;
  c.tcp_reset += (facts.tcp_flags >> 2) & 1U;
  if (facts.vlan_tags != 0) c.vlan.Add(bytes);
  if (facts.is_fragment) c.fragments.Add(bytes);
  if (facts.is_icmp_error) {
    c.icmp_errors.Add(bytes);
    c.last_icmp_error = std::max(c.last_icmp_error, packet.time);
  }
  if (facts.delivery() == Delivery::kBroadcast) c.broadcast.Add(bytes);
  if (facts.delivery() == Delivery::kMulticast) c.multicast.Add(bytes);
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

void StatisticsTables::CountNodes(const Packet& packet, const AddressPair& pair, std::uint32_t source,
                                  std::uint32_t destination) {
  std::uint64_t bytes = packet.original_length;
  std::uint16_t size = SizeField(bytes);
  if (source != kNoAddress) {
    NodeEntry& node = nodes_.Edit(NodeRow(source, pair.source.type));
    Widen(&node.first_time_sent, &node.last_time_sent, packet.time);
    ++node.packets_sent;
    node.bytes_sent += bytes;
    node.min_size_sent = std::min(node.min_size_sent, size);
    node.max_size_sent = std::max(node.max_size_sent, size);
    if (pair.delivery == Delivery::kBroadcast) {
      ++node.broadcast_packets;
      node.broadcast_bytes += bytes;
    } else if (pair.delivery == Delivery::kMulticast) {
      ++node.multicast_packets;
      node.multicast_bytes += bytes;
    }
  }
  if (destination != kNoAddress) {
    NodeEntry& node = nodes_.Edit(NodeRow(destination, pair.destination.type));
    Widen(&node.first_time_received, &node.last_time_received, packet.time);
    ++node.packets_received;
    node.bytes_received += bytes;
    node.min_size_received = std::min(node.min_size_received, size);
    node.max_size_received = std::max(node.max_size_received, size);
  }
}

bool StatisticsTables::CountHierarchy(std::uint32_t physical, std::uint32_t logical, bool sent, std::uint64_t bytes) {
  if (physical == kNoAddress) return true;
  std::uint64_t hash = hierarchy_hash_(physical, logical);
  std::uint32_t row = hierarchy_index_.Find(hash, [&](std::uint32_t candidate) {
    return hierarchy_[candidate].address == physical && hierarchy_[candidate].parent == logical;
  });
  if (row == kNoRow) {
    if (hierarchy_.size() >= limits_.hierarchy) return false;
    row = static_cast<std::uint32_t>(hierarchy_.size());
    HierarchyEntry added;
    added.address = physical;
    added.parent = logical;
    hierarchy_index_.Reserve();
    hierarchy_.Append(added);
    hierarchy_index_.Add(hash, row);
  }
  HierarchyEntry& entry = hierarchy_.Edit(row);
  ++(sent ? entry.packets_sent : entry.packets_received);
  (sent ? entry.bytes_sent : entry.bytes_received) += bytes;
  return true;
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

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "capture/tables/packet_note.h"
#include "capture/tables/paged_vector.h"
#include "capture/tables/row_index.h"

namespace orvo {

/// The rows of all tables that a packet counts in, besides that of its protocol; kNoRow where there is none. Ends stand
/// in the order physical sender and receiver, network sender and receiver, pairs in the same order.
struct PacketRows {
  std::array<std::uint32_t, 4> nodes{kNoRow, kNoRow, kNoRow, kNoRow};
  std::array<std::uint32_t, 4> hierarchy{kNoRow, kNoRow, kNoRow, kNoRow};
  std::array<std::uint32_t, 2> conversations{kNoRow, kNoRow};
};

/// Where the packets of one direction of a flow were counted last. Fills one line of the cache.
///
/// A route holds for packets of the same flow as long as these stay between the same physical addresses. The network's
/// ends need no look, as they are the flow's: packets in tunnels take no route.
struct alignas(64) Route {
  /// Whether packets like this one can have a route: their nodes are those of an Ethernet frame (or none) and of an IP
  /// header.
  static bool MayLead(const PacketNote& note) {
    if (!note.flow_names_network || note.pair_count == 0) return false;
    const AddressPair& network = note.pairs[note.pair_count - 1U];
    if (network.source.type != kAddressIp && network.source.type != kAddressIpv6) return false;
    return note.pair_count == 1 || (note.pairs[0].source.type == kAddressPhysical && note.pairs[0].names_both_ends());
  }

  /// Whether the packet's nodes and hierarchy rows are the route's.
  bool Leads(const PacketNote& note) const {
    if (flow != note.flow.serial || pair_count != note.pair_count) return false;
    return pair_count == 1 ||
           (std::memcmp(source.data(), note.pairs[0].source.bytes.data(), sizeof source) == 0 &&
            std::memcmp(destination.data(), note.pairs[0].destination.bytes.data(), sizeof destination) == 0);
  }

  void Lead(const PacketNote& note, const PacketRows& found) {
    flow = note.flow.serial;
    pair_count = note.pair_count;
    protocol = note.protocol;
    std::copy_n(note.pairs[0].source.bytes.begin(), source.size(), source.begin());
    std::copy_n(note.pairs[0].destination.bytes.begin(), destination.size(), destination.begin());
    rows = found;
  }

  std::uint64_t flow = 0;  ///< its serial, 0 while there is no route
  PacketRows rows;
  std::uint16_t protocol = 0;  ///< that the conversations are of
  std::uint8_t pair_count = 0;
  std::array<std::uint8_t, 6> source{};
  std::array<std::uint8_t, 6> destination{};
};
static_assert(sizeof(Route) == 64);

/// The routes of all flows under way, 128 bytes a flow.
class RouteTable {
 public:
  /// The route of the packet's flow and direction, whether it leads or not; holds until the next call.
  Route& At(const FlowMark& flow) {
    while (routes_.size() <= flow.number) routes_.Append({});
    return routes_.Edit(flow.number)[flow.from_first ? 0 : 1];
  }
  void Prefetch(const FlowMark& flow) const {
    if (flow.number < routes_.size()) __builtin_prefetch(&routes_[flow.number][flow.from_first ? 0 : 1]);
  }

 private:
  PagedVector<std::array<Route, 2>> routes_;
};

}  // namespace orvo

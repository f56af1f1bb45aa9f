#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace orvo {

/// Packets and their bytes on the wire.
struct Traffic {
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;

  void Add(std::uint64_t length) {
    ++packets;
    bytes += length;
  }
};

/// Flows of TCP and UDP.
struct FlowCounts {
  std::uint64_t begun = 0;
  std::uint64_t recognised = 0;     ///< by their content
  std::uint64_t given_up = 0;       ///< under way, but dropped from the full table
  std::uint64_t not_inspected = 0;  ///< judged early, as too many were being looked into

  FlowCounts Since(const FlowCounts& earlier) const {
    return {begun - earlier.begun, recognised - earlier.recognised, given_up - earlier.given_up,
            not_inspected - earlier.not_inspected};
  }
};

/// The buckets of the Ethernet size scheme: to 64, 65-127, 256-511, 512-1023, 1024-1517, from 1518. The scheme names no
/// bucket for 128 to 255; frames of those sizes are counted in the one below, so that every packet is in a bucket.
inline constexpr std::size_t kSizeBuckets = 6;

constexpr std::size_t SizeBucket(std::uint64_t length) {
  if (length <= 64) return 0;
  if (length <= 255) return 1;
  if (length <= 511) return 2;
  if (length <= 1023) return 3;
  return length <= 1517 ? 4 : 5;
}

/// Everything that is counted once for the whole capture. Times are nanoseconds since 1601-01-01 UTC, 0 for never.
struct Counters {
  Traffic total;
  Traffic broadcast;
  Traffic multicast;
  Traffic vlan;
  Traffic fragments;
  Traffic icmp_errors;
  std::uint64_t first_time = 0;  ///< earliest, whatever the order of the packets
  std::uint64_t last_time = 0;
  std::uint64_t last_icmp_error = 0;
  std::uint64_t tcp_syn = 0;
  std::uint64_t tcp_fin = 0;
  std::uint64_t tcp_reset = 0;
  std::uint64_t malformed = 0;
  std::uint64_t cut_off = 0;
  std::uint64_t dropped = 0;
  std::uint64_t out_of_order = 0;            ///< older than the packet before
  std::uint64_t unlisted_addresses = 0;      ///< packets with an address that the full address table did not take in
  std::uint64_t unlisted_conversations = 0;  ///< packets of a conversation or hierarchy row that a full table lacks
  FlowCounts flows;
  std::uint64_t shortest = 0;  ///< 0 while there are no packets
  std::uint64_t longest = 0;
  std::array<std::uint64_t, kSizeBuckets> sizes{};
  // Taken from the tables when they are frozen.
  std::uint64_t physical_nodes = 0;
  std::uint64_t ipv4_nodes = 0;
  std::uint64_t ipv6_nodes = 0;
  std::uint64_t protocols = 0;
  std::uint64_t conversations = 0;

  std::uint64_t duration() const { return last_time - first_time; }
};

}  // namespace orvo

#pragma once

#include <cstdint>

#include "capture/tables/size_distribution.h"

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

/// Calls and their media.
struct VoiceCounts {
  std::uint64_t calls = 0;
  std::uint64_t streams = 0;
  std::uint64_t sip_requests = 0;  ///< with those that could not be read
  std::uint64_t sip_responses = 0;
  std::uint64_t rtp_packets = 0;
  std::uint64_t rtcp_packets = 0;           ///< that are about one of the streams
  std::uint64_t unlisted_sip_messages = 0;  ///< of calls or media that the full tables did not take in
  std::uint64_t unlisted_rtp_packets = 0;   ///< of streams that the full table did not take in
};

/// What the expert analysis has found but does not list.
struct ExpertCounts {
  std::uint64_t events = 0;           ///< all, listed or not
  std::uint64_t unlisted_flows = 0;   ///< over for so long that others took their rows
  std::uint64_t unlisted_events = 0;  ///< that the log had no room for any more
};

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
  std::uint64_t unlisted_conversations = 0;  ///< packets of a conversation that the full table lacks
  std::uint64_t unlisted_hierarchy = 0;      ///< packets of a hierarchy row that the full table lacks
  std::uint64_t unlisted_wireless = 0;       ///< wireless packets of a node, channel or rate that a full table lacks
  std::uint64_t unlisted_names = 0;          ///< names that the full directory refused
  FlowCounts flows;
  VoiceCounts voice;
  ExpertCounts expert;
  std::uint64_t shortest = 0;  ///< 0 while there are no packets
  std::uint64_t longest = 0;
  SizeCounts sizes{};
  // Taken from the tables when they are frozen.
  std::uint64_t physical_nodes = 0;
  std::uint64_t ipv4_nodes = 0;
  std::uint64_t ipv6_nodes = 0;
  std::uint64_t protocols = 0;
  std::uint64_t conversations = 0;

  std::uint64_t duration() const { return last_time - first_time; }
};

}  // namespace orvo

#pragma once

#include <array>
#include <cstdint>

#include "capture/analysis/expert/expert_events.h"
#include "capture/analysis/expert/response_times.h"

namespace orvo {

/// The two ends of a flow, as positions.
enum FlowSide : std::uint8_t { kClient = 0, kServer = 1 };

/// One flow as reports show it. Pairs are what the client sent and what the server sent.
struct FlowRow {
  std::uint64_t id = 0;                                     ///< counts flows from 1; 0 for a row not in use
  std::array<std::array<std::uint8_t, 16>, 2> addresses{};  ///< an IPv4 address takes the first four bytes
  std::array<std::uint16_t, 2> ports{};
  std::array<std::uint16_t, 2> applications{};  ///< as in PacketFacts, those of the ports until others are known
  std::uint8_t ip_protocol = 0;
  std::uint8_t ip_version = 0;
  EventSeverity severity = EventSeverity::kInformational;  ///< the highest, if there are events
  std::uint32_t events = 0;
  std::uint64_t first_time = 0;  ///< nanoseconds since 1601-01-01 UTC
  std::uint64_t last_time = 0;
  std::uint64_t active_time = 0;  ///< nanoseconds; a silence counts as a second at most
  std::array<std::uint64_t, 2> bytes{};
  std::array<std::uint32_t, 2> packets{};
  ResponseTimes<std::uint32_t> responses;
  std::uint32_t connect_time = 0;  ///< of the TCP handshake, in microseconds; 0 when not seen
  std::array<std::uint32_t, 2> retransmissions{};
  std::uint32_t out_of_order = 0;
  std::uint32_t missing = 0;
  std::uint32_t duplicate_acks = 0;
  std::uint32_t zero_windows = 0;
  std::uint32_t resets = 0;
};
static_assert(sizeof(FlowRow) <= 176);

/// The same for all flows of one application.
struct ApplicationRow {
  std::array<std::uint16_t, 2> applications{};
  std::uint8_t ip_protocol = 0;
  EventSeverity severity = EventSeverity::kInformational;
  std::uint64_t flows = 0;
  std::uint64_t flows_with_events = 0;
  std::uint64_t events = 0;
  std::array<std::uint64_t, 2> bytes{};
  std::array<std::uint64_t, 2> packets{};
  std::array<std::uint64_t, 2> retransmissions{};
  ResponseTimes<std::uint64_t> responses;
};

}  // namespace orvo

#pragma once

#include <array>
#include <cstdint>

#include "capture/analysis/expert/flow_row.h"
#include "capture/analysis/expert/spoken_protocol.h"
#include "capture/analysis/expert/tcp_track.h"
#include "capture/tables/row_index.h"

namespace orvo {

/// Queries to a name server that wait for their answers; the oldest makes room for one more.
struct DnsTrack {
  struct Query {
    std::uint64_t time = 0;  ///< 0 for none
    std::uint16_t id = 0;
  };
  std::array<Query, 4> queries{};
};

using TcpTrack = std::array<TcpDirection, 2>;

/// What is remembered of a flow under way besides its row, to judge its next packet by. Fills two lines of the
/// cache.
struct alignas(64) FlowTrack {
  union Transport {
    TcpTrack tcp;  ///< by FlowSide
    DnsTrack dns;  ///< of UDP
    Transport() : tcp{} {}
  };

  std::uint64_t serial = 0;        ///< of the flow that is meant, as in FlowMark
  std::uint64_t request_time = 0;  ///< of the last part of a request without an answer; 0 for none
  std::uint32_t row = kNoRow;
  std::uint32_t answer_bytes = 0;  ///< of the answer that is under way
  Tick answer_begin = 0;
  Tick answer_end = 0;
  Tick opened = 0;  ///< when the handshake that is under way has begun: TCP's, then TLS's
  SpokenProtocol spoken = SpokenProtocol::kOther;
  bool client_is_first : 1 = false;  ///< as FlowMark::from_first says it
  bool asked_to_connect : 1 = false;
  bool let_in : 1 = false;  ///< the server has agreed to connect
  bool connected : 1 = false;
  bool reset : 1 = false;
  bool tls_begun : 1 = false;
  bool tls_agreed : 1 = false;
  Transport transport;
};
static_assert(sizeof(FlowTrack) == 128);

}  // namespace orvo

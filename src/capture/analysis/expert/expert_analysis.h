#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "capture/analysis/expert/event_log.h"
#include "capture/analysis/expert/flow_expert.h"
#include "capture/analysis/expert/network_watch.h"
#include "capture/analysis/expert/wireless_watch.h"
#include "capture/decode/packet_facts.h"
#include "capture/source/packet.h"
#include "capture/tables/counters.h"

namespace orvo {

struct ExpertOptions {
  std::size_t flows = 1'000'000;         ///< rows of flows that are over, about 170 bytes each
  std::size_t events = 100'000;          ///< of the log, about 100 bytes each
  std::uint64_t apdex_target = 500'000;  ///< microseconds
};

/// What the analysis has found so far. Immutable; copies are cheap, and any thread may read them.
struct FrozenExpert {
  FrozenFlows flows;
  FrozenEvents events;

  ExpertCounts counts() const { return {events.total, flows.dropped, events.fallen_out()}; }

  /// Positions of the rows in use, in the order in which the flows began.
  std::vector<std::uint32_t> FlowOrder() const;
  /// Of all flows, those included that have no row any more; that of most bytes first.
  std::vector<ApplicationRow> Applications() const;
};

/// Watches packets for what is slow and what goes wrong.
///
/// Belongs to one thread; others may call it while that thread is stopped.
/// Memory: a row and a track, about 280 bytes together, for each flow that the flow table knows, and what ExpertOptions
/// allows.
class ExpertAnalysis {
 public:
  explicit ExpertAnalysis(const ExpertOptions& options);

  /// Takes packets in their order, and as many facts, with `flow` and `applications` filled in; fills in what it finds
  /// of each packet, `is_retransmission`. The packets' bytes must still be there. The more at a time, the faster it
  /// goes, up to some hundred.
  void Inspect(std::span<const Packet> packets, std::span<PacketFacts> facts);
  FrozenExpert Freeze();
  ExpertCounts counts();
  /// Starts over.
  void Reset();

 private:
  const ExpertOptions options_;
  FlowExpert flows_;
  NetworkWatch network_;
  WirelessWatch wireless_;
  EventLog log_;
};

}  // namespace orvo

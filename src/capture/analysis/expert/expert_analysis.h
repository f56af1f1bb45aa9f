#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "capture/analysis/expert/event_log.h"
#include "capture/analysis/expert/expert_notes.h"
#include "capture/analysis/expert/flow_expert.h"
#include "capture/tables/counters.h"
#include "capture/tables/packet_note.h"

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

/// Finds out what is slow and what goes wrong, from what ExpertReader has read of packets.
///
/// Belongs to one thread at a time.
/// Memory: a row and a track, about 300 bytes together, for each flow that the flow table knows, and what ExpertOptions
/// allows.
class ExpertAnalysis {
 public:
  explicit ExpertAnalysis(const ExpertOptions& options);

  /// Takes packets in their order, and what was read of as many; fills in what it finds of each packet,
  /// `is_retransmission`. The more at a time, the faster it goes, up to some hundred.
  void Inspect(std::span<PacketNote> packets, const ExpertNotes& notes);
  FrozenExpert Freeze();
  ExpertCounts counts();
  /// Starts over.
  void Reset();

 private:
  const ExpertOptions options_;
  FlowExpert flows_;
  EventLog log_;
};

}  // namespace orvo

#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "capture/analysis/expert/application_totals.h"
#include "capture/analysis/expert/event_log.h"
#include "capture/analysis/expert/expert_notes.h"
#include "capture/analysis/expert/flow_track.h"
#include "capture/tables/packet_note.h"
#include "capture/tables/paged_vector.h"

namespace orvo {

/// The flows as of one moment.
struct FrozenFlows {
  FrozenTable<FlowRow> rows;  ///< in no order; those with id 0 are not in use
  std::shared_ptr<const ApplicationTotals> dropped_totals;
  std::uint64_t dropped = 0;  ///< flows that are over and have no row any more
};

/// Follows the flows of TCP and UDP: who asks and who answers, how fast, and what goes wrong.
///
/// The client is who opens the connection; where that was not seen, who speaks to the port that is well known (or the
/// lower of two); else who speaks first. A flow has a row from its first packet on; rows of flows that are over are
/// kept up to a limit, the latest.
class FlowExpert {
 public:
  /// `kept` flows that are over keep their rows. `apdex_target` is in microseconds.
  FlowExpert(std::size_t kept, std::uint64_t apdex_target) : kept_(kept), apdex_target_(apdex_target) {}

  // Begin to fetch what a packet to come will need, the second some packets after the first. May be left out.
  void PrefetchTrack(const FlowMark& flow) const;
  void PrefetchRow(const FlowMark& flow) const;

  /// Takes a packet, which counts if it is of a flow; true for a retransmission.
  bool Inspect(const PacketNote& packet, const FlowNote& note, EventLog* log);
  FrozenFlows Freeze();
  /// As in FrozenFlows.
  std::uint64_t dropped() const { return dropped_; }
  /// Forgets all rows. Flows under way begin new ones.
  void Reset();

 private:
  FlowTrack& TrackOf(const PacketNote& packet, const FlowNote& note, EventLog* log);
  void BeginRow(const PacketNote& packet, const FlowNote& note, FlowTrack* track);
  std::uint32_t FreeRow();
  void Keep(std::uint32_t row);

  std::size_t kept_;
  std::uint64_t apdex_target_;
  std::uint64_t begun_ = 0;
  std::vector<FlowTrack> tracks_;  // by the flow's number
  PagedVector<FlowRow> rows_;
  std::vector<std::uint32_t> free_rows_;
  std::deque<std::uint32_t> over_;  // rows of flows that are over, oldest first
  ApplicationTotals dropped_totals_;
  std::uint64_t dropped_ = 0;
};

}  // namespace orvo

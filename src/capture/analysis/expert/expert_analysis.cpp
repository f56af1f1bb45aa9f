#include "capture/analysis/expert/expert_analysis.h"

#include <algorithm>

namespace orvo {

ExpertAnalysis::ExpertAnalysis(const ExpertOptions& options)
    : options_(options), flows_(options.flows, options.apdex_target), log_(options.events) {}

void ExpertAnalysis::Inspect(std::span<PacketNote> packets, const ExpertNotes& notes) {
  // Some packets run ahead, so that what they need is on its way when it is their turn.
  constexpr std::size_t kAhead = 8;
  const std::size_t count = packets.size();
  std::size_t event = 0;
  for (std::size_t i = 0; i < count + 2 * kAhead; ++i) {
    if (i < count) flows_.PrefetchTrack(packets[i].flow);
    if (i >= kAhead && i - kAhead < count) flows_.PrefetchRow(packets[i - kAhead].flow);
    if (i < 2 * kAhead) continue;
    PacketNote& packet = packets[i - 2 * kAhead];
    const ExpertNotes::Entry& entry = notes.packets[i - 2 * kAhead];
    packet.is_retransmission = flows_.Inspect(packet, entry.flow, &log_);
    for (; event < entry.events_so_far; ++event) log_.Add(notes.events[event]);
  }
}

FrozenExpert ExpertAnalysis::Freeze() {
  return {flows_.Freeze(), log_.Freeze()};
}

ExpertCounts ExpertAnalysis::counts() {
  return {log_.total(), flows_.dropped(), log_.fallen_out()};
}

void ExpertAnalysis::Reset() {
  flows_.Reset();
  log_ = EventLog(options_.events);
}

std::vector<std::uint32_t> FrozenExpert::FlowOrder() const {
  std::vector<std::uint32_t> order;
  order.reserve(flows.rows.size());
  for (std::uint32_t i = 0; i < flows.rows.size(); ++i) {
    if (flows.rows[i].id != 0) order.push_back(i);
  }
  auto id = [&](std::uint32_t row) { return flows.rows[row].id; };
  if (!std::ranges::is_sorted(order, {}, id)) std::ranges::sort(order, {}, id);
  return order;
}

std::vector<ApplicationRow> FrozenExpert::Applications() const {
  ApplicationTotals totals = *flows.dropped_totals;
  for (std::size_t i = 0; i < flows.rows.size(); ++i) {
    if (flows.rows[i].id != 0) totals.Add(flows.rows[i]);
  }
  return totals.Rows();
}

}  // namespace orvo

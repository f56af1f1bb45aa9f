#include "capture/analysis/expert/expert_analysis.h"

#include <algorithm>

namespace orvo {

ExpertAnalysis::ExpertAnalysis(const ExpertOptions& options)
    : options_(options), flows_(options.flows, options.apdex_target), log_(options.events) {}

void ExpertAnalysis::Inspect(std::span<const Packet> packets, std::span<PacketFacts> facts) {
  if (packets.size() > 1) flows_.Prepare(facts);
  for (std::size_t i = 0; i < packets.size(); ++i) {
    flows_.Inspect(packets[i], &facts[i], &log_);
    network_.Inspect(packets[i], facts[i], &log_);
    wireless_.Inspect(packets[i], facts[i], &log_);
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

#include "capture/analysis/expert/application_totals.h"

#include <algorithm>
#include <numeric>

namespace orvo {

void ApplicationTotals::Add(const FlowRow& flow) {
  std::uint64_t key =
      std::uint64_t{flow.applications[0]} << 32 | std::uint64_t{flow.applications[1]} << 16 | flow.ip_protocol;
  ApplicationRow& row = rows_[key];
  row.applications = flow.applications;
  row.ip_protocol = flow.ip_protocol;
  row.severity = std::max(row.severity, flow.severity);
  ++row.flows;
  row.flows_with_events += flow.events != 0;
  row.events += flow.events;
  for (FlowSide side : {kClient, kServer}) {
    row.bytes[side] += flow.bytes[side];
    row.packets[side] += flow.packets[side];
    row.retransmissions[side] += flow.retransmissions[side];
  }
  row.responses.Join(flow.responses);
}

std::vector<ApplicationRow> ApplicationTotals::Rows() const {
  std::vector<ApplicationRow> rows;
  rows.reserve(rows_.size());
  for (const auto& [key, row] : rows_) rows.push_back(row);
  auto bytes = [](const ApplicationRow& row) { return row.bytes[kClient] + row.bytes[kServer]; };
  std::ranges::stable_sort(rows, [&](const auto& a, const auto& b) { return bytes(a) > bytes(b); });
  return rows;
}

}  // namespace orvo

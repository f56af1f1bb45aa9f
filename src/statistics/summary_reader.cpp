#include "statistics/summary_reader.h"

#include "platform/error.h"

namespace orvo {
namespace {

using ContextTotal = Status (IStatsContext::*)(std::uint64_t*);

std::uint64_t ReadTotal(ISummarySnapshot& snapshot, const Guid& identifier, IStatsContext& statistics,
                        ContextTotal fallback) {
  SummaryValue value;
  if (snapshot.GetValue(identifier, &value) == S_OK && value.kind != kSummaryNone) return value.first;
  std::uint64_t total = 0;
  Check((statistics.*fallback)(&total));
  return total;
}

}  // namespace

ReferenceTotals ReadReferenceTotals(ISummarySnapshot& snapshot, IStatsContext& statistics) {
  ReferenceTotals totals;
  totals.packets = ReadTotal(snapshot, kStatTotalPackets, statistics, &IStatsContext::GetTotalPackets);
  totals.bytes = ReadTotal(snapshot, kStatTotalBytes, statistics, &IStatsContext::GetTotalBytes);
  totals.duration = ReadTotal(snapshot, kStatDuration, statistics, &IStatsContext::GetDuration);
  return totals;
}

std::u16string SummaryName(ISummarySnapshot& snapshot, const StatisticMap& map, const Guid& identifier) {
  std::u16string name;
  if (Failed(snapshot.GetName(identifier, &name)) || name.empty()) name = map.Find(identifier);
  return name;
}

}  // namespace orvo

#include "text/summary_file.h"

#include <optional>

#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/summary_figures.h"
#include "statistics/summary_reader.h"
#include "text/section_file.h"

namespace orvo {
namespace {

/// A value column of counts: which of the two counts it shows, and how.
struct SummaryColumn {
  std::string_view title;
  int gate;
  std::optional<std::uint64_t> SummaryFigures::*count;
  Value (*value)(std::uint64_t count, const ReferenceTotals& totals);
};

Value Plain(std::uint64_t count, const ReferenceTotals& /*totals*/) {
  return Value::Unsigned(count);
}
Value PctOfBytes(std::uint64_t count, const ReferenceTotals& totals) {
  return Value::Real(Percentage(count, totals.bytes));
}
Value PctOfPackets(std::uint64_t count, const ReferenceTotals& totals) {
  return Value::Real(Percentage(count, totals.packets));
}
Value Rate(std::uint64_t count, const ReferenceTotals& totals) {
  return Value::Real(PerSecond(count, totals.duration));
}

constexpr SummaryColumn kColumns[] = {
    {"Bytes", kAlways, &SummaryFigures::bytes, Plain},
    {"Packets", kSwitchSumPackets, &SummaryFigures::packets, Plain},
    {"PctBytes", kSwitchSumPctBytes, &SummaryFigures::bytes, PctOfBytes},
    {"PctPackets", kSwitchSumPctPackets, &SummaryFigures::packets, PctOfPackets},
    {"BytesPerSec", kSwitchSumBytespSec, &SummaryFigures::bytes, Rate},
    {"PktsPerSec", kSwitchSumPacketspSec, &SummaryFigures::packets, Rate},
};

void AppendColumn(TextReport& report, const SummaryColumn& column, const SummaryFigures& figures,
                  const ReferenceTotals& totals, TextBuffer* out) {
  if (figures.integer) return AppendValue(report, Value::Unsigned(*figures.integer), out);
  if (figures.real) return AppendValue(report, Value::Real(*figures.real), out);
  if (!figures.counts()) return out->AppendWide(figures.text);
  const std::optional<std::uint64_t>& count = figures.*column.count;
  if (!count) return out->Append('-');
  AppendValue(report, column.value(*count, totals), out);
}

std::vector<SummaryColumn> EnabledColumns(const TextReport& report) {
  std::vector<SummaryColumn> enabled;
  for (const SummaryColumn& column : kColumns) {
    if (report.IsOn(column.gate)) enabled.push_back(column);
  }
  return enabled;
}

std::string Header(const TextReport& report, const std::vector<SummaryColumn>& columns) {
  std::string line = "Time Saved";
  for (std::string_view title : {"Group", "Statistic"}) line.append(report.separator).append(title);
  for (const SummaryColumn& column : columns) line.append(report.separator).append(column.title);
  return line + '\n';
}

void WriteRows(TextReport& report, ISummarySnapshot& snapshot, const ReferenceTotals& totals,
               const std::vector<SummaryColumn>& columns, SectionFile& file) {
  const std::string time_saved = TimeSaved(report);
  std::uint32_t count = 0;
  Check(snapshot.GetCount(&count));
  TextBuffer& row = file.row();
  for (std::uint32_t index = 0; index < count; ++index) {
    Guid statistic;
    Check(snapshot.GetIdentifier(index, &statistic));
    SummaryValue value;
    Check(snapshot.GetValue(statistic, &value));
    if (value.kind == kSummaryNone) continue;
    Guid group;
    Check(snapshot.GetParent(statistic, &group));

    row.Append(time_saved);
    for (const Guid& named : {group, statistic}) {
      row.Append(report.separator);
      row.AppendWide(SummaryName(snapshot, report.statistic_map, named));
    }
    const SummaryFigures figures = FiguresOf(value);
    if (!figures.empty()) {
      for (const SummaryColumn& column : columns) {
        row.Append(report.separator);
        AppendColumn(report, column, figures, totals, &row);
      }
    }
    file.EndRow();
  }
}

}  // namespace

void WriteSummaryFile(TextReport& report) {
  ComPtr<ISummaryStats> summary;
  if (Failed(GetCategory(report.job.statistics, kSummaryCategory, &summary)) || !summary) return;
  // Without the map, names come from the engine alone.
  if (report.statistic_map.empty()) (void)report.statistic_map.Load(u"StatMap.xml");
  // Without these there is nothing to write a header for.
  ComPtr<ISummarySnapshot> snapshot;
  Check(summary->GetSnapshot(0, snapshot.Out()));
  const ReferenceTotals totals = ReadReferenceTotals(*snapshot, *report.job.statistics);
  const std::vector<SummaryColumn> columns = EnabledColumns(report);
  WriteSectionFile(report, FilePath(report, kStrSummaryStatistics), Header(report, columns),
                   [&](SectionFile& file) { WriteRows(report, *snapshot, totals, columns, file); });
}

}  // namespace orvo

#include "text/summary_file.h"

#include <bit>
#include <optional>

#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/summary_reader.h"
#include "text/section_file.h"
#include "util/date_time.h"
#include "util/duration.h"
#include "util/formatting.h"

namespace orvo {
namespace {

/// One statistic as its row needs it: the text that stands in every value column, or the counts that each column takes
/// its own figure from. A kind that is unknown has neither.
struct SummaryRow {
  std::u16string text{};
  std::optional<std::uint64_t> integer{};
  std::optional<double> real{};
  std::optional<std::uint64_t> packets{};
  std::optional<std::uint64_t> bytes{};
  const ReferenceTotals& totals;
  bool has_values = true;
};

/// A value column of counts: which of the two counts it shows, and how.
struct SummaryColumn {
  std::string_view title;
  int gate;
  std::optional<std::uint64_t> SummaryRow::*count;
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
    {"Bytes", kAlways, &SummaryRow::bytes, Plain},
    {"Packets", kSwitchSumPackets, &SummaryRow::packets, Plain},
    {"PctBytes", kSwitchSumPctBytes, &SummaryRow::bytes, PctOfBytes},
    {"PctPackets", kSwitchSumPctPackets, &SummaryRow::packets, PctOfPackets},
    {"BytesPerSec", kSwitchSumBytespSec, &SummaryRow::bytes, Rate},
    {"PktsPerSec", kSwitchSumPacketspSec, &SummaryRow::packets, Rate},
};

/// Sorts a value into what the row needs of it.
SummaryRow MakeRow(const SummaryValue& value, const ReferenceTotals& totals) {
  SummaryRow row{.totals = totals};
  switch (value.kind) {
    case kSummaryDate: Check(FormatDate(value.first, &row.text)); break;
    case kSummaryTime: Check(FormatTimeOfDay(value.first, kNoFraction, &row.text)); break;
    case kSummaryDuration:
      Check(FormatDuration(static_cast<std::int64_t>(value.first), kNoFraction, TextOf(kStrDaysAndTime), &row.text));
      break;
    case kSummaryPackets: row.packets = value.first; break;
    case kSummaryBytes: row.bytes = value.first; break;
    case kSummaryPacketsAndBytes:
      row.packets = value.first;
      row.bytes = value.second;
      break;
    case kSummaryInteger: row.integer = value.first; break;
    case kSummaryReal: row.real = std::bit_cast<double>(value.first); break;
    default: row.has_values = false; break;
  }
  return row;
}

void AppendColumn(TextReport& report, const SummaryColumn& column, const SummaryRow& row, TextBuffer* out) {
  if (row.integer) return AppendValue(report, Value::Unsigned(*row.integer), out);
  if (row.real) return AppendValue(report, Value::Real(*row.real), out);
  if (!row.packets && !row.bytes) return out->AppendWide(row.text);
  const std::optional<std::uint64_t>& count = row.*column.count;
  if (!count) return out->Append('-');
  AppendValue(report, column.value(*count, row.totals), out);
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

void WriteRows(TextReport& report, ISummarySnapshot& snapshot, const std::vector<SummaryColumn>& columns,
               SectionFile& file) {
  const ReferenceTotals totals = ReadReferenceTotals(snapshot, *report.job.statistics);
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
    const SummaryRow values = MakeRow(value, totals);
    if (values.has_values) {
      for (const SummaryColumn& column : columns) {
        row.Append(report.separator);
        AppendColumn(report, column, values, &row);
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
  const std::vector<SummaryColumn> columns = EnabledColumns(report);
  WriteSectionFile(report, FilePath(report, kStrSummaryStatistics), Header(report, columns), [&](SectionFile& file) {
    ComPtr<ISummarySnapshot> snapshot;
    Check(summary->GetSnapshot(0, snapshot.Out()));
    WriteRows(report, *snapshot, columns, file);
  });
}

}  // namespace orvo

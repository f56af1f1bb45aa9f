#include <optional>
#include <span>

#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/statistic_map.h"
#include "statistics/summary_figures.h"
#include "statistics/summary_reader.h"
#include "util/date_time.h"
#include "util/duration.h"
#include "util/formatting.h"
#include "util/string_table.h"
#include "xml/category_documents.h"
#include "xml/report_document.h"
#include "xml/xml_columns.h"

namespace orvo {
namespace {

constexpr std::u16string_view kHistoryFile = u"SummaryStatistics.xml";
constexpr std::string_view kElement = "SummaryStatistics";

/// One statistic as its row needs it.
struct SummaryRow {
  SummaryFigures figures;
  const ReferenceTotals& totals;
};

/// A child element of a row. Rates are left out where nothing is being captured.
struct SummaryColumn {
  std::string_view name;
  int gate;
  bool is_rate;
  std::u16string (*text)(XmlReport& report, const SummaryRow& row);
};

using Count = std::optional<std::uint64_t> SummaryFigures::*;

template <Count count>
std::u16string Plain(XmlReport& /*report*/, const SummaryRow& row) {
  const std::optional<std::uint64_t>& figure = row.figures.*count;
  return figure ? NumberText(*figure) : std::u16string();
}

template <Count count, std::uint64_t ReferenceTotals::*whole>
std::u16string Percent(XmlReport& report, const SummaryRow& row) {
  const std::optional<std::uint64_t>& figure = row.figures.*count;
  return figure ? ValueText(report, Value::Real(Percentage(*figure, row.totals.*whole))) : std::u16string();
}

template <Count count>
std::u16string Rate(XmlReport& report, const SummaryRow& row) {
  const std::optional<std::uint64_t>& figure = row.figures.*count;
  return figure ? ValueText(report, Value::Real(PerSecond(*figure, row.totals.duration))) : std::u16string();
}

/// What is no count of packets or bytes.
std::u16string Other(XmlReport& report, const SummaryRow& row) {
  if (row.figures.integer) return NumberText(*row.figures.integer);
  if (row.figures.real) return ValueText(report, Value::Real(*row.figures.real));
  return row.figures.text;
}

constexpr SummaryColumn kPackets{"PacketsValue", kSwitchSumPackets, false, Plain<&SummaryFigures::packets>};
constexpr SummaryColumn kBytes{"BytesValue", kNoSwitch, false, Plain<&SummaryFigures::bytes>};
constexpr SummaryColumn kPctPackets{"PctOfPkts", kSwitchSumPctPackets, false,
                                    Percent<&SummaryFigures::packets, &ReferenceTotals::packets>};
constexpr SummaryColumn kPctBytes{"PctOfBytes", kSwitchSumPctBytes, false,
                                  Percent<&SummaryFigures::bytes, &ReferenceTotals::bytes>};
constexpr SummaryColumn kPacketRate{"PktsPerSec", kSwitchSumPacketspSec, true, Rate<&SummaryFigures::packets>};
constexpr SummaryColumn kByteRate{"BytesPerSec", kSwitchSumBytespSec, true, Rate<&SummaryFigures::bytes>};
constexpr SummaryColumn kText{"Values", kNoSwitch, false, Other};

// The order depends on what a statistic counts.
constexpr SummaryColumn kColumnsOfValues[] = {kPackets, kBytes, kPctPackets, kPctBytes, kPacketRate, kByteRate, kText};
constexpr SummaryColumn kColumnsOfPackets[] = {kPackets, kPctPackets, kPacketRate, kBytes, kPctBytes, kByteRate, kText};
constexpr SummaryColumn kColumnsOfBytes[] = {kBytes, kPctBytes, kByteRate, kPackets, kPctPackets, kPacketRate, kText};

std::span<const SummaryColumn> ColumnsOf(std::uint32_t kind) {
  switch (kind) {
    case kSummaryPackets:
    case kSummaryPacketsAndBytes: return kColumnsOfPackets;
    case kSummaryBytes: return kColumnsOfBytes;
    default: return kColumnsOfValues;
  }
}

std::u16string DurationText(std::uint64_t duration) {
  std::u16string text;
  Check(FormatDuration(static_cast<std::int64_t>(duration), kNoFraction, TextOf(kStrDaysAndTime), &text));
  return text;
}

/// The value of a statistic; nothing when the snapshot cannot give it.
std::optional<std::uint64_t> Find(ISummarySnapshot& snapshot, const Guid& identifier) {
  SummaryValue value;
  if (snapshot.GetValue(identifier, &value) != S_OK || value.kind == kSummaryNone) return {};
  return value.first;
}

/// What the snapshot itself holds; for a total that it lacks, that of the live context.
ReferenceTotals ReadTotals(XmlReport& report, ISummarySnapshot& snapshot) {
  ReferenceTotals totals{.duration = Find(snapshot, kStatDuration).value_or(0)};
  if (const auto packets = Find(snapshot, kStatTotalPackets)) {
    totals.packets = *packets;
  } else {
    Check(report.job.live->GetTotalPackets(&totals.packets));
  }
  if (const auto bytes = Find(snapshot, kStatTotalBytes)) {
    totals.bytes = *bytes;
  } else {
    Check(report.job.live->GetTotalBytes(&totals.bytes));
  }
  return totals;
}

/// Writes the statistics of snapshots, whose names come from the engine or else from the statistic map.
class SnapshotWriter {
 public:
  explicit SnapshotWriter(XmlReport& report) : report_(report) {
    // Without the map, names come from the engine alone.
    (void)map_.Load(std::u16string(report.template_root) + u"StatMap.xml");
  }

  /// Adds the groups and rows of a snapshot; gives the number of rows.
  std::uint64_t Write(ISummarySnapshot& snapshot, XmlWriter parent) {
    std::u16string group_name = GroupName(snapshot, kStatFirstGroup);
    XmlWriter group = AddGroup(parent, group_name);
    const ReferenceTotals totals = ReadTotals(report_, snapshot);
    std::uint32_t count = 0;
    Check(snapshot.GetCount(&count));
    std::uint64_t rows = 0;
    for (std::uint32_t index = 0; index < count; ++index) {
      Guid statistic;
      Check(snapshot.GetIdentifier(index, &statistic));
      SummaryValue value;
      Check(snapshot.GetValue(statistic, &value));
      if (value.kind == kSummaryNone) continue;
      if (std::u16string name = GroupName(snapshot, statistic); name != group_name) {
        group_name = std::move(name);
        group = AddGroup(parent, group_name);
      }
      const XmlWriter row = group.AddElement("SummaryStat");
      row.AddElement("Name", SummaryName(snapshot, map_, statistic));
      AddColumns({.figures = FiguresOf(value), .totals = totals}, ColumnsOf(value.kind), row);
      ++rows;
    }
    return rows;
  }

 private:
  std::u16string GroupName(ISummarySnapshot& snapshot, const Guid& statistic) {
    Guid group;
    Check(snapshot.GetParent(statistic, &group));
    return SummaryName(snapshot, map_, group);
  }

  static XmlWriter AddGroup(XmlWriter parent, const std::u16string& name) {
    const XmlWriter group = parent.AddElement("Group");
    group.SetAttribute("Name", name);
    return group;
  }

  void AddColumns(const SummaryRow& values, std::span<const SummaryColumn> columns, XmlWriter row) {
    for (const SummaryColumn& column : columns) {
      if ((column.is_rate && report_.memory.no_rates) || !report_.IsOn(column.gate)) continue;
      row.AddElement(column.name, column.text(report_, values));
    }
  }

  XmlReport& report_;
  StatisticMap map_;
};

/// The present statistics; null when there are none.
ComPtr<ISummarySnapshot> Current(ISummaryStats& summary) {
  ComPtr<ISummarySnapshot> snapshot;
  if (Failed(summary.GetSnapshot(0, snapshot.Out()))) snapshot.Reset();
  return snapshot;
}

void AddSummaryTimes(XmlReport& report, ISummarySnapshot& snapshot, XmlWriter entry) {
  const XmlWriter summary = entry.AddElement("Summary");
  summary.AddElement("TimeSaved", TimeSaved(report));
  std::u16string text;
  if (const auto date = Find(snapshot, kStatStartDate)) Check(FormatDate(*date, &text));
  summary.AddElement("StartDate", text);
  text.clear();
  if (const auto time = Find(snapshot, kStatStartTime)) Check(FormatTimeOfDay(*time, kNoFraction, &text));
  summary.AddElement("StartTime", text);
  if (const auto duration = Find(snapshot, kStatDuration)) summary.AddElement("Duration", DurationText(*duration));
}

std::uint64_t WriteSnapshots(XmlReport& report, ISummaryStats& summary, ISummarySnapshot& current,
                             SnapshotWriter& writer, XmlWriter stats) {
  XmlWriter element = stats.AddElement("Snapshot");
  element.SetAttribute("Name", u"Current");
  std::uint64_t rows = writer.Write(current, element);
  if (!report.IsOn(kSwitchOutputSnapshots)) return rows;
  std::uint32_t count = 0;
  Check(summary.GetSnapshotCount(&count));
  for (std::uint32_t index = 1; index < count; ++index) {
    ComPtr<ISummarySnapshot> stored;
    Check(summary.GetSnapshot(index, stored.Out()));
    std::u16string name;
    Check(stored->GetSnapshotName(&name));
    element = stats.AddElement("Snapshot");
    element.SetAttribute("Name", name);
    rows += writer.Write(*stored, element);
  }
  return rows;
}

/// Adds the statistics of the report's moment to the history; without a summary, nothing is saved.
void ExtendHistory(XmlReport& report, SnapshotWriter& writer) {
  const ComPtr<ISummaryStats> summary = Obtain(*report.job.statistics, kSummaryCategory);
  const ComPtr<ISummarySnapshot> current = summary ? Current(*summary) : ComPtr<ISummarySnapshot>();
  if (!current) return;
  AddHistory(report, kHistoryFile, "History", "Snapshot", [&](XmlWriter entry) {
    entry.SetAttribute("Time", TimeSaved(report));
    return std::optional(writer.Write(*current, entry));
  });
}

}  // namespace

bool WriteSummaryDocument(XmlReport& report) {
  std::u16string_view file = kIndexFile;
  return Contain(report, file, [&] {
    SnapshotWriter writer(report);
    const ComPtr<ISummaryStats> summary = Obtain(*report.job.live, kSummaryCategory);
    const ComPtr<ISummarySnapshot> current = summary ? Current(*summary) : ComPtr<ISummarySnapshot>();
    if (!current) return false;
    IndexEntry entry(report, kElement, u"2.0");
    AddSummaryTimes(report, *current, entry.element());
    entry.Keep(WriteSnapshots(report, *summary, *current, writer, entry.element().AddElement("Stats")));
    if (report.memory.extends_history()) {
      file = kHistoryFile;
      ExtendHistory(report, writer);
    }
    return true;
  });
}

}  // namespace orvo

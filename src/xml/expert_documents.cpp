#include <algorithm>
#include <span>
#include <vector>

#include "platform/code_page.h"
#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/analysis_tables.h"
#include "xml/category_documents.h"
#include "xml/report_document.h"

namespace orvo {
namespace {

constexpr std::u16string_view kLogFile = u"ExpertLog.xml";

/// A switch that preferences may be asked for though no report has it. What they do not know they leave alone, so that
/// its value is that of the switch read before.
constexpr std::uint32_t kSwitchEventLog = 123;

/// The columns of voice and video, in the order of the engine's table.
constexpr std::uint32_t kMediaColumns[] = {
    kMediaStart,
    kMediaMosLq,
    kMediaEvents,
    kMediaFinish,
    kMediaMosCq,
    kMediaHops,
    kMediaDuration,
    kMediaMosPq,
    kMediaPackets,
    kMediaMosNom,
    kMediaBytes,
    kMediaRListening,
    kMediaProtocol,
    kMediaRConversational,
    kMediaRG107,
    kMediaFlowId,
    kMediaRNominal,
    kMediaSourceAddress,
    kMediaDestinationAddress,
    kMediaSourcePort,
    kMediaDestinationPort,
    kMediaJitter,
    kMediaPacketLoss,
    kMediaSsrc,
    kMediaCodec,
};
static_assert(std::ranges::is_sorted(kMediaColumns));

/// A column as it is copied.
struct TableColumn {
  std::uint32_t number;
  std::string element;
  std::u16string title;
  bool drops_commas;
};

TableColumn DescribeColumn(AnalysisTable& table, std::uint32_t number, bool may_drop_commas) {
  TableColumn column{
      .number = number, .element = ToUtf8(table.ColumnIdentifier(number)), .title = {}, .drops_commas = false};
  column.title = table.ColumnTitle(number);
  column.drops_commas = may_drop_commas && (column.element == "PROBLEM_COUNT" || column.element == "DELAY");
  return column;
}

std::vector<TableColumn> AllColumns(AnalysisTable& table) {
  std::vector<TableColumn> columns;
  const std::uint32_t count = table.ColumnCount();
  for (std::uint32_t number = 0; number < count; ++number) columns.push_back(DescribeColumn(table, number, true));
  return columns;
}

std::vector<TableColumn> MediaColumns(AnalysisTable& table) {
  std::vector<TableColumn> columns;
  const std::uint32_t count = table.ColumnCount();
  for (std::uint32_t number : kMediaColumns) {
    if (number < count) columns.push_back(DescribeColumn(table, number, false));
  }
  return columns;
}

/// Adds every row of a table, cell by cell; gives their number.
std::uint64_t CopyTable(AnalysisTable& table, std::span<const TableColumn> columns, XmlWriter parent) {
  const std::uint32_t row_count = table.RowCount();
  for (std::uint32_t row = 0; row < row_count; ++row) {
    const XmlWriter stats = parent.AddElement("Stats");
    for (const TableColumn& column : columns) {
      const XmlWriter cell = stats.AddElement(column.element);
      cell.SetAttribute("Name", column.title);
      std::u16string& text = table.Cell(row, column.number);
      if (column.drops_commas) std::erase(text, u',');
      cell.SetAttribute("Value", text);
    }
  }
  return row_count;
}

/// Fills an element from a table; gives the number of rows.
std::uint64_t FillFrom(XmlReport& report, ITableProvider& tables, TableKind kind, XmlWriter element) {
  element.SetAttribute("TimeSaved", TimeSaved(report));
  AnalysisTable table(tables, kind);
  return CopyTable(table, AllColumns(table), element);
}

void WriteEventLog(XmlReport& report, ITableProvider& tables) {
  XmlFile document(report.job.folder + std::u16string(kLogFile));
  const std::uint64_t rows = FillFrom(report, tables, kTableEventLog, document.Add("ExpertLog"));
  report.memory.written.event_log = true;
  document.Commit();
  ReportSaved(report, kLogFile, rows);
}

bool WriteExpert(XmlReport& report, std::u16string_view* file) {
  WrittenSections& written = report.memory.written;
  if (!report.IsOn(kSwitchOutputExpertStats)) {
    written.flows = written.applications = written.event_log = false;
    return false;
  }
  const ComPtr<ITableProvider> tables = OpenAnalysisTables(*report.job.live, E_NOINTERFACE);
  if (!tables) return false;

  IndexEntry entry(report, "ExpertStatistics", u"1.0");
  std::uint64_t rows = 0;
  auto fill = [&](std::string_view element, TableKind kind) {
    const std::uint64_t added = FillFrom(report, *tables, kind, entry.element().AddElement(element));
    rows += added;
    return added != 0;
  };
  if (report.IsOn(kSwitchExpertFlows)) written.flows = fill("FlowStatistics", kTableFlows);
  std::int32_t value = ReadSwitch(report, kSwitchExpertApplications).value;
  if (value != 0) written.applications = fill("ApplicationStatistics", kTableApplications);
  fill("EventCounts", kTableEventCounts);
  entry.Keep(rows);

  const Status gate = Check(report.preferences.GetPreference(kSwitchEventLog, &value));
  if (value != 0) {
    *file = kLogFile;
    WriteEventLog(report, *tables);
  }
  return gate == S_OK;
}

bool WriteMedia(XmlReport& report) {
  if (!report.IsOn(kSwitchOutputVoIPOnly)) return false;
  const ComPtr<ITableProvider> tables = OpenAnalysisTables(*report.job.live, E_NOINTERFACE);
  if (!tables) return false;
  IndexEntry entry(report, "VoIPStatistics", u"1.1");
  AnalysisTable table(*tables, kTableMedia);
  const XmlWriter media = entry.element().AddElement("VoIPMediaStatistics");
  media.SetAttribute("TimeSaved", TimeSaved(report));
  const std::uint64_t rows = CopyTable(table, MediaColumns(table), media);
  if (rows == 0) return false;
  entry.Keep(rows);
  return true;
}

}  // namespace

bool WriteExpertDocuments(XmlReport& report) {
  std::u16string_view file = kIndexFile;
  return Contain(report, file, [&] { return WriteExpert(report, &file); });
}

bool WriteMediaDocument(XmlReport& report) {
  return Contain(report, kIndexFile, [&] { return WriteMedia(report); });
}

}  // namespace orvo

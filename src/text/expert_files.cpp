#include "text/expert_files.h"

#include <span>
#include <vector>

#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/analysis_tables.h"
#include "text/section_file.h"

namespace orvo {
namespace {

struct ExpertFile {
  int gate;
  TableKind table;
  StringId title;
};

constexpr ExpertFile kExpertFiles[] = {
    {kSwitchExpertFlows, kTableFlows, kStrExpertFlowStatistics},
    {kSwitchExpertApplications, kTableApplications, kStrExpertApplicationStatistics},
    {kAlways, kTableEventCounts, kStrExpertEventCounts},
};

/// The columns of the file of voice and video, in its order.
constexpr std::uint32_t kMediaColumns[] = {
    kMediaFlowId,          kMediaSourceAddress, kMediaSourcePort,      kMediaDestinationAddress,
    kMediaDestinationPort, kMediaEvents,        kMediaProtocol,        kMediaHops,
    kMediaPackets,         kMediaBytes,         kMediaStart,           kMediaFinish,
    kMediaDuration,        kMediaJitter,        kMediaPacketLoss,      kMediaSsrc,
    kMediaCodec,           kMediaMosLq,         kMediaMosCq,           kMediaMosPq,
    kMediaMosNom,          kMediaRListening,    kMediaRConversational, kMediaRG107,
    kMediaRNominal,
};

// Names of columns that the files treat in their own way.
constexpr std::u16string_view kLeftOut = u"EVENT_NAME";
constexpr std::u16string_view kSeverity = u"EVENT_SEVERITY_MAX";

/// A field and the separator behind it.
void AppendField(const TextReport& report, std::u16string_view text, TextBuffer* out) {
  out->AppendWide(text);
  out->Append(report.separator);
}

/// The columns that the engine gives a table; none when it cannot say how many there are.
std::uint32_t CountColumns(AnalysisTable& table) {
  std::uint32_t count = 0;
  (void)Guard([&] { count = table.ColumnCount(); });
  return count;
}

std::vector<std::uint32_t> ShownColumns(AnalysisTable& table, std::uint32_t count) {
  std::vector<std::uint32_t> shown;
  for (std::uint32_t column = 0; column < count; ++column) {
    if (table.ColumnIdentifier(column) != kLeftOut) shown.push_back(column);
  }
  return shown;
}

std::string ExpertHeader(const TextReport& report, AnalysisTable& table, std::uint32_t count) {
  TextBuffer line(512);
  AppendField(report, u"Time Saved", &line);
  for (std::uint32_t column : ShownColumns(table, count)) {
    const bool is_severity = table.ColumnIdentifier(column) == kSeverity;
    AppendField(report, is_severity ? u"Severity" : std::u16string_view(table.ColumnTitle(column)), &line);
  }
  line.Append('\n');
  return std::string(line.view());
}

std::string MediaHeader(const TextReport& report, AnalysisTable& table) {
  TextBuffer line(512);
  AppendField(report, u"Time Saved", &line);
  for (std::uint32_t column : kMediaColumns) AppendField(report, table.ColumnTitle(column), &line);
  line.Append('\n');
  return std::string(line.view());
}

void CopyRows(TextReport& report, AnalysisTable& table, std::uint32_t row_count, std::span<const std::uint32_t> columns,
              SectionFile& file) {
  const std::string time_saved = TimeSaved(report);
  TextBuffer& out = file.row();
  for (std::uint32_t row = 0; row < row_count; ++row) {
    out.Append(time_saved);
    out.Append(report.separator);
    for (std::uint32_t column : columns) {
      std::u16string& cell = table.Cell(row, column);
      std::erase(cell, u',');
      AppendField(report, cell, &out);
    }
    file.EndRow();
  }
}

void WriteExpertFile(TextReport& report, ITableProvider& tables, const ExpertFile& which) {
  AnalysisTable table(tables, which.table);
  const std::uint32_t column_count = CountColumns(table);
  Status counted = S_OK;
  const Status written = Guard([&] {
    WriteSectionFile(
        report, FilePath(report, which.title), [&] { return ExpertHeader(report, table, column_count); },
        [&](SectionFile& file) {
          std::uint32_t row_count = 0;
          counted = Guard([&] { row_count = table.RowCount(); });
          Check(counted);
          if (row_count == 0) return;
          CopyRows(report, table, row_count, ShownColumns(table, column_count), file);
        });
  });
  // Rows that cannot be counted fail this file, not the section.
  if (Succeeded(counted)) Check(written);
}

}  // namespace

void WriteExpertFiles(TextReport& report) {
  ComPtr<ITableProvider> tables = OpenAnalysisTables(*report.job.live, E_POINTER);
  if (!tables) return;
  for (const ExpertFile& file : kExpertFiles) {
    if (report.IsOn(file.gate)) WriteExpertFile(report, *tables, file);
  }
}

void WriteMediaFile(TextReport& report) {
  if (!report.IsOn(kSwitchOutputVoIPOnly)) return;
  ComPtr<ITableProvider> tables = OpenAnalysisTables(*report.job.live, E_NOINTERFACE);
  if (!tables) return;
  AnalysisTable table(*tables, kTableMedia);
  WriteSectionFile(
      report, FilePath(report, kStrVoipMediaStatistics), [&] { return MediaHeader(report, table); },
      [&](SectionFile& file) { CopyRows(report, table, table.RowCount(), kMediaColumns, file); });
}

}  // namespace orvo

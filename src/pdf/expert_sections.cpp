#include <optional>
#include <span>

#include "pdf/analysis_section.h"
#include "pdf/sections.h"
#include "prefs/switch_ids.h"

namespace orvo {
namespace {

constexpr std::uint32_t kSeverityColumn = 2;

struct SeverityColor {
  std::u16string_view severity;
  PdfColor color;
};

constexpr SeverityColor kSeverityColors[] = {
    {u"Informational", kPdfBlack}, {u"Minor", {0, 0.8F, 0}}, {u"Major", {1, 1, 0}}, {u"Severe", {1, 0, 0}}};

/// A severity in its colour; nothing for one that has none.
void ShowSeverity(PdfReport& /*report*/, const AnalysisRow& row, SectionCell* cell) {
  const std::u16string_view severity = row.table.Cell(row.number, kSeverityColumn);
  for (const SeverityColor& one : kSeverityColors) {
    if (severity != one.severity) continue;
    cell->text = severity;
    cell->color = &one.color;
  }
}

constexpr AnalysisColumn kEventCounts[] = {
    {"Event", "", 50, ShowCell<3>, 45},
    {"Severity", "", 270, ShowSeverity},
    {"Layer", "", 340, ShowCell<1>},
    {"Events", "", 440, ShowCell<4>},
};

constexpr AnalysisColumn kFlowEnds[] = {
    {"Flow", "ID", 50, ShowCell<0>},      {"Client", "Address", 120, ShowCell<1>},
    {"Client", "Port", 220, ShowCell<2>}, {"Server", "Address", 270, ShowCell<3>},
    {"Server", "Port", 370, ShowCell<4>}, {"Bytes", "", 420, ShowCell<13>},
    {"Packets", "", 490, ShowCell<10>},
};

constexpr AnalysisColumn kFlowQuality[] = {
    {"Flow", "ID", 50, ShowCell<0>},        {"Events", "", 100, ShowCell<5>},
    {"Protocol", "", 150, ShowCell<6>, 11}, {"Apdex", "Score", 220, ShowCell<7>},
    {"Sample", "Count", 290, ShowCell<8>},  {"Response", "Time", 340, ShowCell<22>},
    {"C->S", "bps", 410, ShowCell<26>},     {"S->C", "bps", 480, ShowCell<30>},
};

constexpr AnalysisColumn kApplications[] = {
    {"Name", "", 50, ShowCell<0>, 11},      {"Flows", "", 120, ShowCell<6>},    {"Events", "", 170, ShowCell<7>},
    {"Protocol", "", 220, ShowCell<8>, 11}, {"Apdex", "", 290, ShowCell<9>},    {"Sample", "Count", 360, ShowCell<10>},
    {"Bytes", "", 410, ShowCell<15>},       {"Packets", "", 480, ShowCell<12>},
};

/// A table of the expert analysis: the switch that turns it on, where there is one, and what it is printed from.
struct ExpertSection {
  std::optional<std::uint32_t> gate;
  TableKind kind;
  SectionTitle title;
  std::span<const AnalysisColumn> columns;
};

constexpr std::u16string_view kFlowTitle = u"Expert Flow Statistics: Reported ";

constexpr ExpertSection kSections[] = {
    {{}, kTableEventCounts, {u"Summary", u"Expert Event Counts: Reported "}, kEventCounts},
    {kSwitchExpertFlows, kTableFlows, {u"Flows", kFlowTitle}, kFlowEnds},
    {kSwitchExpertFlows, kTableFlows, {u"", kFlowTitle}, kFlowQuality},
    {kSwitchExpertApplications,
     kTableApplications,
     {u"Applications", u"Expert Application Statistics: Reported "},
     kApplications},
};

}  // namespace

void PrintExpert(PdfReport& report, PdfOutline* parent) {
  if (!report.IsOn(kSwitchOutputExpertStats)) return;
  const ComPtr<ITableProvider> tables = OpenAnalysisTables(*report.job.live, E_NOINTERFACE);
  if (!tables) return;
  PdfOutline* group = report.document.CreateChildOutline(parent, u"Expert");
  for (const ExpertSection& section : kSections) {
    Contain(report, [&] {
      if (section.gate && !report.IsOn(*section.gate)) return;
      if (std::optional<AnalysisTable> table = FindTable(*tables, section.kind)) {
        PrintAnalysisTable(report, group, section.title, section.columns, *table);
      }
    });
  }
}

}  // namespace orvo

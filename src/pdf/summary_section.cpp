#include <optional>

#include "pdf/section_table.h"
#include "pdf/sections.h"
#include "statistics/obtain.h"
#include "statistics/summary_figures.h"
#include "statistics/summary_reader.h"

namespace orvo {
namespace {

constexpr unsigned kRowsBelowGroup = 9;  ///< as many rows as a group's line needs below it

struct SummaryRow {
  std::u16string name;
  SummaryFigures figures;
  const ReferenceTotals& totals;
};

using Count = std::optional<std::uint64_t> SummaryFigures::*;

/// What stands in all columns, or what this one makes of its count: count(number, text).
template <class WordCount>
void WordFigure(PdfReport& report, const SummaryFigures& figures, Count count, std::u16string* text,
                WordCount&& word_count) {
  if (figures.integer) return WordValue(report, Value::Unsigned(*figures.integer), text);
  if (figures.real) return WordValue(report, Value::Real(*figures.real), text);
  if (!figures.counts()) {
    *text = figures.text;
  } else if (const std::optional<std::uint64_t>& number = figures.*count) {
    word_count(*number);
  } else {
    *text = u"N/A";
  }
}

template <Count count>
void ShowCount(PdfReport& report, const SummaryRow& row, SectionCell* cell) {
  WordFigure(report, row.figures, count, &cell->text,
             [&](std::uint64_t number) { WordValue(report, Value::Unsigned(number), &cell->text); });
}

template <Count count, std::uint64_t ReferenceTotals::*whole>
void ShowPercentage(PdfReport& report, const SummaryRow& row, SectionCell* cell) {
  WordFigure(report, row.figures, count, &cell->text,
             [&](std::uint64_t number) { WordPercentage(number, row.totals.*whole, &cell->text); });
}

constexpr SectionColumn<SummaryRow> kColumns[] = {
    {"Name", "", 50, ShowText<&SummaryRow::name>, 45},
    {"Bytes", "", 280, ShowCount<&SummaryFigures::bytes>},
    {"Packets", "", 350, ShowCount<&SummaryFigures::packets>},
    {"Pct of", "Bytes", 420, ShowPercentage<&SummaryFigures::bytes, &ReferenceTotals::bytes>},
    {"Pct of", "Packets", 490, ShowPercentage<&SummaryFigures::packets, &ReferenceTotals::packets>},
};

/// The table of the summary, in which a line names each group above its rows, and again at the top of every page.
class SummaryTable {
 public:
  SummaryTable(PdfReport& report, PdfOutline* parent)
      : document_(report.document),
        table_(report, parent, {.bookmark = u"Summary", .page_title = u"Summary Statistics: Reported "}, kColumns) {}

  void AddRow(const std::u16string& group, const SummaryRow& row) {
    if (group != group_) {
      group_ = group;
      BeginGroup();
    }
    table_.AddRow(row, [&] { MustBeDrawn(DrawGroup()); });
  }

 private:
  void BeginGroup() {
    SkipTwoLines();
    if (!table_.cursor().RowsDontFit(kRowsBelowGroup) && DrawGroup()) return;
    table_.StartPage();
    MustBeDrawn(DrawGroup());
  }

  bool DrawGroup() {
    PdfCursor& cursor = table_.cursor();
    cursor.ResetX();
    if (!document_.DrawText(u"Group: " + group_, cursor.x, cursor.y)) return false;
    SkipTwoLines();
    return true;
  }

  void SkipTwoLines() {
    table_.cursor().NextLine();
    table_.cursor().NextLine();
  }

  PdfDocument& document_;
  SectionTable<SummaryRow> table_;
  std::u16string group_;
};

/// The value of a statistic; nothing for one that cannot be read or has none.
std::optional<SummaryValue> Find(ISummarySnapshot& snapshot, std::uint32_t index, Guid* statistic) {
  SummaryValue value;
  if (Failed(snapshot.GetIdentifier(index, statistic)) || Failed(snapshot.GetValue(*statistic, &value))) return {};
  if (value.kind == kSummaryNone) return {};
  return value;
}

}  // namespace

void PrintSummary(PdfReport& report, PdfOutline* parent) {
  StatisticMap map;
  (void)map.Load(u"StatMap.xml");  // without it, names come from the engine alone
  const ComPtr<ISummaryStats> summary = Obtain(*report.job.statistics, kSummaryCategory);
  if (!summary) return;
  ComPtr<ISummarySnapshot> snapshot;
  Check(summary->GetSnapshot(0, snapshot.Out()));
  const ReferenceTotals totals = ReadReferenceTotals(*snapshot, *report.job.statistics);
  std::uint32_t count = 0;
  Check(snapshot->GetCount(&count));

  SummaryTable table(report, parent);
  for (std::uint32_t index = 0; index < count; ++index) {
    Guid statistic;
    Guid group;
    const std::optional<SummaryValue> value = Find(*snapshot, index, &statistic);
    if (!value || Failed(snapshot->GetParent(statistic, &group))) continue;
    table.AddRow(SummaryName(*snapshot, map, group),
                 {.name = SummaryName(*snapshot, map, statistic), .figures = FiguresOf(*value), .totals = totals});
  }
}

}  // namespace orvo

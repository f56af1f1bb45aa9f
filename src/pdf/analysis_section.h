#pragma once

#include <optional>
#include <utility>

#include "pdf/section_table.h"
#include "statistics/analysis_tables.h"

namespace orvo {

/// A row of an analysis table.
struct AnalysisRow {
  AnalysisTable& table;
  std::uint32_t number;
};

using AnalysisColumn = SectionColumn<AnalysisRow>;

/// The text that the engine has in a column, by its number.
template <std::uint32_t column>
void ShowCell(PdfReport& /*report*/, const AnalysisRow& row, SectionCell* cell) {
  // The table's text is good for this once only, so that it can be had without a copy.
  std::swap(cell->text, row.table.Cell(row.number, column));
}

/// The table of a kind; nothing for one that the engine does not keep. Raises any other failure.
std::optional<AnalysisTable> FindTable(ITableProvider& tables, TableKind kind);

/// Prints every row of an analysis table, in its order.
void PrintAnalysisTable(PdfReport& report, PdfOutline* parent, const SectionTitle& title,
                        std::span<const AnalysisColumn> columns, AnalysisTable& table);

}  // namespace orvo

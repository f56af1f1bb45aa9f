#include "pdf/analysis_section.h"

namespace orvo {

std::optional<AnalysisTable> FindTable(ITableProvider& tables, TableKind kind) {
  std::optional<AnalysisTable> table;
  const Status status = Guard([&] { table.emplace(tables, kind); });
  if (status != E_INVALIDARG) Check(status);
  return table;
}

void PrintAnalysisTable(PdfReport& report, PdfOutline* parent, const SectionTitle& title,
                        std::span<const AnalysisColumn> columns, AnalysisTable& table) {
  SectionTable<AnalysisRow> printed(report, parent, title, columns);
  const std::uint32_t count = table.RowCount();
  for (std::uint32_t row = 0; row < count; ++row) printed.AddRow({.table = table, .number = row});
}

}  // namespace orvo

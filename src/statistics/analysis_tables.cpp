#include "statistics/analysis_tables.h"

#include "engine/categories.h"
#include "platform/error.h"

namespace orvo {
namespace {

constexpr std::uint32_t kView = 1;

}  // namespace

AnalysisTable::AnalysisTable(ITableProvider& provider, TableKind kind) {
  Check(provider.GetTable(kind, kView, table_.Out()));
  if (!table_) Raise(E_POINTER);
}

std::uint32_t AnalysisTable::ColumnCount() {
  std::uint32_t count = 0;
  Check(table_->GetColumnCount(&count));
  return count;
}

std::uint32_t AnalysisTable::RowCount() {
  std::uint32_t count = 0;
  Check(table_->GetRowCount(&count));
  return count;
}

std::u16string& AnalysisTable::ColumnTitle(std::uint32_t column) {
  Check(table_->GetColumnTitle(column, &text_));
  return text_;
}

std::u16string& AnalysisTable::ColumnIdentifier(std::uint32_t column) {
  Check(table_->GetColumnIdentifier(column, &text_));
  return text_;
}

std::u16string& AnalysisTable::Cell(std::uint32_t row, std::uint32_t column) {
  Check(table_->GetCell(row, column, &text_));
  return text_;
}

ComPtr<ITableProvider> OpenAnalysisTables(IStatsContext& statistics, Status without_tables) {
  ComPtr<IExpertStats> expert;
  if (Failed(GetCategory(&statistics, kExpertCategory, &expert)) || !expert) return {};
  ComPtr<ITableProvider> provider;
  if (Failed(Query(expert.get(), &provider)) || !provider) Raise(without_tables);
  return provider;
}

}  // namespace orvo

#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "engine/tables.h"
#include "platform/error.h"
#include "platform/object.h"

namespace orvo {

/// A column of an analysis table: the name that programs read (a valid XML element name, unique in its table), the
/// title that people read, and the function that words a row's cell. Both names are ASCII.
template <class Row>
struct AnalysisColumn {
  std::string_view identifier;
  std::string_view title;
  std::u16string (*text)(const Row& row);
};

/// ITable over rows that never change: `Rows` is copied, has size(), and gives a row by operator[], as a reference or a
/// value. `columns` is an array of AnalysisColumn that outlives everything. Texts are formed when they are asked for.
template <class Rows, const auto& columns>
class AnalysisTable final : public Object<ITable> {
 public:
  explicit AnalysisTable(Rows rows) : rows_(std::move(rows)) {}

  Status GetColumnCount(std::uint32_t* count) override { return GiveCount(columns.size(), count); }
  Status GetRowCount(std::uint32_t* count) override { return GiveCount(rows_.size(), count); }
  Status GetColumnTitle(std::uint32_t column, std::u16string* title) override {
    return GiveName(column, title, [](const auto& found) { return found.title; });
  }
  Status GetColumnIdentifier(std::uint32_t column, std::u16string* identifier) override {
    return GiveName(column, identifier, [](const auto& found) { return found.identifier; });
  }
  Status GetCell(std::uint32_t row, std::uint32_t column, std::u16string* text) override {
    if (!text) return E_POINTER;
    if (row >= rows_.size() || column >= columns.size()) return E_INVALIDARG;
    return Guard([&] { *text = columns[column].text(rows_[row]); });
  }

 private:
  static Status GiveCount(std::size_t value, std::uint32_t* count) {
    if (!count) return E_POINTER;
    *count = static_cast<std::uint32_t>(value);
    return S_OK;
  }

  template <class Get>
  static Status GiveName(std::uint32_t column, std::u16string* name, Get get) {
    if (!name) return E_POINTER;
    if (column >= columns.size()) return E_INVALIDARG;
    return Guard([&] {
      std::string_view ascii = get(columns[column]);
      name->assign(ascii.begin(), ascii.end());
    });
  }

  Rows rows_;
};

}  // namespace orvo

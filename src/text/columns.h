#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "text/text_report.h"

namespace orvo {

/// How the fields of a line are set apart: by separators between them, or by one behind each of them, the last
/// included.
enum class Layout { kJoined, kTerminated };

/// One column of a table of records: its title, the switch that turns it on, and where its value comes from.
template <class Record>
struct Column {
  StringId title;
  int gate;
  Value (*value)(const Record&);
};

/// The columns of a table that are switched on. Header and rows walk the same list.
template <class Record>
class ColumnSet {
 public:
  /// Reads each column's switch once; raises a failing read.
  ColumnSet(const TextReport& report, std::span<const Column<Record>> columns) {
    for (const Column<Record>& column : columns) {
      if (report.IsOn(column.gate)) enabled_.push_back(column);
    }
  }

  /// Appends the titles, each behind a separator.
  void AppendTitles(std::string_view separator, TextBuffer* out) const {
    for (const Column<Record>& column : enabled_) {
      out->Append(separator);
      out->Append(AsciiTextOf(column.title));
    }
  }

  /// Appends a record's values, each behind a separator.
  void AppendValues(TextReport& report, const Record& record, TextBuffer* out) const {
    for (const Column<Record>& column : enabled_) {
      out->Append(report.separator);
      AppendValue(report, column.value(record), out);
    }
  }

 private:
  std::vector<Column<Record>> enabled_;
};

/// A header line of fixed titles, with its line end.
std::string HeaderLine(std::string_view separator, std::span<const std::string_view> titles, Layout layout);

}  // namespace orvo

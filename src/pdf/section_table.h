#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "pdf/pdf_report.h"
#include "pdf/pdf_table.h"
#include "statistics/value.h"

namespace orvo {

/// What a column prints in one row. An empty text prints nothing.
struct SectionCell {
  std::u16string text;
  const PdfColor* color = nullptr;  ///< null for black
};

/// One column of a section's table: its header, where it stands, and how its cells are worded.
template <class Row>
struct SectionColumn {
  std::string_view header;
  std::string_view header_more;                                        ///< its second line; empty for none
  float position;                                                      ///< that of the first column is kPdfLeftMargin
  void (*word)(PdfReport& report, const Row& row, SectionCell* cell);  ///< is given an empty cell
  std::size_t longest = 0;  ///< characters that a cell is cut to; 0 for as many as it has
};

/// How a section is announced.
struct SectionTitle {
  std::u16string_view bookmark;    ///< empty for a table that is reached through the one before it
  std::u16string_view page_title;  ///< what stands before the report's time
  float header_gap = kPdfAfterHeader;
};

// Words for cells. Each replaces the text, and raises the failure of a conversion.

/// A value in the locale's form, real numbers with three decimals.
void WordValue(PdfReport& report, const Value& value, std::u16string* text);
/// A part of a whole in percent, computed in double precision and kept in single, with three decimals; "N/A" for a
/// whole of 0.
void WordPercentage(std::uint64_t part, std::uint64_t whole, std::u16string* text);

/// The cells of a column that prints a value.
template <auto value, class Row>
void Show(PdfReport& report, const Row& row, SectionCell* cell) {
  WordValue(report, value(row), &cell->text);
}

/// The cells of a column that prints a text of the row's own.
template <auto text, class Row>
void ShowText(PdfReport& /*report*/, const Row& row, SectionCell* cell) {
  cell->text = row.*text;
}

/// The table of a section, printed row by row along its columns. What cannot be worded or drawn is raised.
template <class Row>
class SectionTable {
 public:
  /// Draws nothing yet. The report and the columns must outlive the table.
  SectionTable(PdfReport& report, PdfOutline* parent, const SectionTitle& title,
               std::span<const SectionColumn<Row>> columns)
      : report_(report),
        columns_(columns),
        headers_(HeadersOf(columns)),
        table_(&report.document, {.parent = parent,
                                  .bookmark = std::u16string(title.bookmark),
                                  .page_title = std::u16string(title.page_title) + report.time_text,
                                  .columns = headers_,
                                  .header_gap = title.header_gap}) {}
  SectionTable(const SectionTable&) = delete;
  SectionTable& operator=(const SectionTable&) = delete;

  void AddRow(const Row& row) {
    AddRow(row, [] {});
  }

  /// The same; `begin_page` draws what stands above the first row of every page that a row begins.
  template <class BeginPage>
  void AddRow(const Row& row, BeginPage&& begin_page) {
    Word(columns_.front(), row);
    if (!table_.TryRow(cell_.text)) {
      table_.StartPage();
      begin_page();
    }
    table_.BeginRow(cell_.text);
    for (const SectionColumn<Row>& column : columns_.subspan(1)) {
      Word(column, row);
      table_.AddCell({.text = cell_.text, .color = cell_.color});
    }
    table_.EndRow();
    ++rows_;
    ++report_.rows;
  }

  /// Adds a page with title and header.
  void StartPage() { table_.StartPage(); }
  PdfCursor& cursor() { return table_.cursor(); }
  std::size_t rows() const { return rows_; }

 private:
  static std::vector<PdfColumn> HeadersOf(std::span<const SectionColumn<Row>> columns) {
    std::vector<PdfColumn> headers;
    for (const SectionColumn<Row>& column : columns) {
      headers.push_back({.header = column.header, .header_more = column.header_more, .position = column.position});
    }
    return headers;
  }

  void Word(const SectionColumn<Row>& column, const Row& row) {
    cell_.text.clear();
    cell_.color = nullptr;
    column.word(report_, row, &cell_);
    if (column.longest != 0) FitText(&cell_.text, column.longest);
  }

  PdfReport& report_;
  std::span<const SectionColumn<Row>> columns_;
  std::vector<PdfColumn> headers_;
  PdfTable table_;
  SectionCell cell_;
  std::size_t rows_ = 0;
};

}  // namespace orvo

#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "pdf/pdf_document.h"

namespace orvo {

/// A column of a printed table. The texts must outlive the table.
struct PdfColumn {
  std::string_view header;       ///< ASCII
  std::string_view header_more;  ///< the header's second line, ASCII; empty for none
  float position = 0;            ///< x of its header and cells; that of the first column is kPdfLeftMargin
};

/// A cell of a row. An empty text prints nothing.
struct PdfCell {
  std::u16string_view text;
  const PdfColor* color = nullptr;  ///< null for black, in which the first cell of a row always is
};

struct PdfTableFormat {
  PdfOutline* parent = nullptr;  ///< below which the table's bookmark goes
  std::u16string bookmark;       ///< leads to the table's first page; empty for none
  std::u16string page_title;     ///< the whole line at the top of each page
  std::span<const PdfColumn> columns;
  float header_gap = kPdfAfterHeader;  ///< from the header's first line to the first row
};

/// Prints the rows of one section, which starts a page of its own with its first row and leaves none without rows;
/// every page repeats title and header, every second row is shaded. All operations raise E_FAIL for what cannot be
/// drawn, and the section ends there; what it has drawn stays in the document.
class PdfTable {
 public:
  /// Draws nothing yet. The document and the columns of `format` are the caller's and must outlive the table.
  PdfTable(PdfDocument* document, PdfTableFormat format);

  /// Prints one row, on a new page when there is no room; `cells` are as many as there are columns, or fewer.
  void AddRow(std::span<const PdfCell> cells);

  // The steps of AddRow, for sections that print more than rows or take their cells one by one: TryRow; StartPage if
  // that was false; BeginRow, which is given the first cell once more; AddCell for each of the others; EndRow.

  /// Tries to draw a row's first cell at the cursor; false when there is no room above the page's bottom.
  bool TryRow(std::u16string_view first_cell);
  /// Adds a page with title and header; the cursor is at its first row.
  void StartPage();
  /// Shades the row where it is to be, and draws its first cell over that.
  void BeginRow(std::u16string_view first_cell);
  /// Draws the cell of the row's next column.
  void AddCell(const PdfCell& cell);
  void EndRow();

  /// Where the next row goes.
  PdfCursor& cursor() { return cursor_; }

 private:
  /// From the cell of a column to the next one.
  float RoomOf(std::size_t column) const;

  PdfDocument* document_;
  PdfTableFormat format_;
  PdfCursor cursor_;
  std::size_t column_ = 0;  // of the next cell
  bool bookmark_pending_ = true;
  bool shade_ = false;
};

}  // namespace orvo

#include "pdf/pdf_table.h"

#include <utility>

#include "platform/error.h"

namespace orvo {
namespace {

void MustBeDrawn(bool drawn) {
  if (!drawn) Raise(E_FAIL);
}

}  // namespace

PdfTable::PdfTable(PdfDocument* document, PdfTableFormat format) : document_(document), format_(std::move(format)) {}

void PdfTable::AddRow(std::span<const PdfCell> cells) {
  const std::u16string_view first = cells.empty() ? std::u16string_view() : cells.front().text;
  if (!TryRow(first)) StartPage();
  BeginRow(first);
  for (std::size_t i = 1; i < cells.size(); ++i) AddCell(cells[i]);
  EndRow();
}

bool PdfTable::TryRow(std::u16string_view first_cell) {
  cursor_.ResetX();
  return document_->DrawText(first_cell, cursor_.x, cursor_.y, RoomOf(0));
}

void PdfTable::StartPage() {
  const PdfPage* page = document_->AddPage(format_.parent, format_.bookmark, &bookmark_pending_);
  cursor_.ResetX();
  cursor_.TopY(document_->PageHeight(page));
  MustBeDrawn(document_->DrawText(format_.page_title, cursor_.x, cursor_.y));
  cursor_.AfterTitle();
  for (const PdfColumn& column : format_.columns) {
    cursor_.AdvanceX(column.position - cursor_.x);
    float line = cursor_.y;
    for (std::string_view header : {column.header, column.header_more}) {
      const std::u16string text(header.begin(), header.end());
      if (!text.empty()) MustBeDrawn(document_->DrawBoldText(text, cursor_.x, line));
      line -= kPdfLinePitch;
    }
  }
  cursor_.ResetX();
  cursor_.AfterHeader(format_.header_gap);
}

void PdfTable::BeginRow(std::u16string_view first_cell) {
  document_->ShadeRow(cursor_.y, &shade_);
  cursor_.ResetX();
  MustBeDrawn(document_->DrawText(first_cell, cursor_.x, cursor_.y, RoomOf(0)));
  column_ = 1;
}

void PdfTable::AddCell(const PdfCell& cell) {
  if (column_ >= format_.columns.size()) Raise(E_UNEXPECTED);
  const float room = RoomOf(column_);
  cursor_.AdvanceX(format_.columns[column_++].position - cursor_.x);
  if (cell.text.empty()) return;
  MustBeDrawn(cell.color ? document_->DrawColoredText(cell.text, cursor_.x, cursor_.y, *cell.color, room)
                         : document_->DrawText(cell.text, cursor_.x, cursor_.y, room));
}

float PdfTable::RoomOf(std::size_t column) const {
  if (column + 1 >= format_.columns.size()) return kPdfToPageEdge;
  return format_.columns[column + 1].position - format_.columns[column].position - kPdfAfterText;
}

void PdfTable::EndRow() {
  cursor_.NextLine();
}

}  // namespace orvo

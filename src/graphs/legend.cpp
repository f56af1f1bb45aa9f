#include "graphs/legend.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "graphs/chart_style.h"
#include "util/ascii.h"

namespace orvo {
namespace {

constexpr double kPadding = 4;
constexpr double kColumnGap = 10;
/// Left free behind a name that is cut, of which the frame takes a part behind the last column.
constexpr double kCutGap = 5;
/// A column that is narrower shows nothing of a name; one that is wider is for names that are cut.
constexpr double kNarrowestColumn = 56;
constexpr double kWidestColumn = 240;

std::uint32_t Whole(double number) {
  return number < 1 ? 0 : static_cast<std::uint32_t>(number);
}

std::uint32_t PartsOf(std::uint32_t count, std::uint32_t size) {
  return (count + size - 1) / size;
}

}  // namespace

Legend::Legend(const CZxGraphDataStorage& storage) : font_(MeasureFont(kLegendFont)), line_(std::ceil(font_.height())) {
  for (std::uint32_t series = 0; series < storage.SeriesCount(); ++series) {
    if (!storage.HasSeries(series)) continue;
    const std::u16string& name = storage.SeriesName(series);
    entries_.push_back({storage.SeriesColour(series), &name, TextLine(name, kLegendFont, kWidestColumn).width()});
  }
}

double Legend::EntryWidth() const {
  double widest = 0;
  for (const Entry& entry : entries_) widest = std::max(widest, entry.width);
  return std::clamp(line_ + std::ceil(widest) + kColumnGap, kNarrowestColumn, kWidestColumn);
}

std::uint32_t Legend::RowsFor(double height) const {
  return Whole((height - 2 * kPadding) / line_);
}

std::uint32_t Legend::ColumnsFor(double width, double entry_width) const {
  return std::min(Whole((width - 2 * kPadding) / entry_width), static_cast<std::uint32_t>(entries_.size()));
}

Legend::Arrangement Legend::Box(std::uint32_t rows, std::uint32_t columns, double most_width) const {
  const double width = std::min(columns * EntryWidth() - kColumnGap + 2 * kPadding + kSmallGap, most_width);
  return {rows, columns, std::floor(width), rows * line_ + 2 * kPadding};
}

Legend::Arrangement Legend::Flat(double most_width, double most_height) const {
  const std::uint32_t most_rows = RowsFor(most_height);
  // Long names are cut rather than that there is but one column of them.
  std::uint32_t columns = ColumnsFor(most_width, std::min(EntryWidth(), most_width / 2 - kPadding));
  const auto count = static_cast<std::uint32_t>(entries_.size());
  // Columns become narrower than the names only when the rows would not suffice.
  if (most_rows != 0 && (columns == 0 || PartsOf(count, columns) > most_rows)) {
    columns = std::clamp(PartsOf(count, most_rows), std::uint32_t{1},
                         std::max(ColumnsFor(most_width, kNarrowestColumn), std::uint32_t{1}));
  }
  if (most_rows == 0 || columns == 0 || most_width < kNarrowestColumn + 2 * kPadding) return {};
  const std::uint32_t rows = std::min(PartsOf(count, columns), most_rows);
  return Box(rows, std::min(columns, PartsOf(count, rows)), most_width);
}

Legend::Arrangement Legend::Tall(double most_width, double most_height) const {
  const std::uint32_t most_rows = RowsFor(most_height);
  if (most_rows == 0 || entries_.empty()) return {};
  const std::uint32_t most_columns = ColumnsFor(most_width, kNarrowestColumn);
  const auto count = static_cast<std::uint32_t>(entries_.size());
  const std::uint32_t columns = std::min(PartsOf(count, most_rows), most_columns);
  if (columns == 0) return {};
  return Box(std::min(PartsOf(count, columns), most_rows), columns, most_width);
}

void Legend::Draw(Canvas* canvas, PointF corner, const Arrangement& arrangement) const {
  canvas->DrawRectangle({corner.x + 0.5, corner.y + 0.5, arrangement.width - 1, arrangement.height - 1}, kLegendPen);
  const double column_width = (arrangement.width - 2 * kPadding - kSmallGap + kColumnGap) / arrangement.columns;
  const std::size_t places = std::size_t{arrangement.rows} * arrangement.columns;
  for (std::size_t i = 0; i < std::min(entries_.size(), places); ++i) {
    const std::size_t column = i / arrangement.rows;
    const double x = std::floor(corner.x + kPadding + static_cast<double>(column) * column_width);
    const double y = corner.y + kPadding + static_cast<double>(i % arrangement.rows) * line_;
    const double base = y + font_.ascent;
    if (i + 1 == places && entries_.size() > places) {
      const std::u16string rest = u"+" + WidenAscii(std::to_string(entries_.size() - i));
      canvas->DrawText(TextLine(rest, kLegendFont), {x + line_, base}, kTextColour);
      break;
    }
    const double inset = std::round(line_ / 4);
    const double side = std::floor(line_ / 2) + 1;
    canvas->FillRectangle({x + inset, y + inset, side, side}, entries_[i].colour);
    const TextLine name(*entries_[i].name, kLegendFont, column_width - line_ - kCutGap);
    canvas->DrawText(name, {x + line_, base}, kTextColour);
  }
}

}  // namespace orvo

#pragma once

#include "graphs/chart_options.h"
#include "platform/canvas.h"

namespace orvo {

/// A slice of a pie: angles are radians clockwise from the right; slices follow each other from the top.
struct PieSlice {
  std::uint32_t series = 0;
  double start = 0;
  double sweep = 0;
  double share = 0;  ///< 0 to 1

  double middle() const { return start + sweep / 2; }
};

/// The slices of all series that have a positive value at point 0, in series order.
std::vector<PieSlice> SlicesOf(const CZxGraphDataStorage& storage);

/// Draws a pie with a label at each slice, its share or (kChartNamedPie) its name and share, and the legend below or
/// beside it, whichever leaves the greater pie. Leaves out what has no room in `area`.
void DrawPieChart(Canvas* canvas, const ChartOptions& options, ChartKind kind, const RectF& area);

}  // namespace orvo

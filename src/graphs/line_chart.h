#pragma once

#include "graphs/chart_options.h"
#include "platform/canvas.h"

namespace orvo {

/// Draws values over time: a line for each series, the axis of values at the left, the points' labels and the legend
/// below. Leaves out what has no room in `area`, a plot of no extent altogether.
void DrawLineChart(Canvas* canvas, const ChartOptions& options, bool point_labels_on, const RectF& area);

}  // namespace orvo

#pragma once

#include <cstdint>
#include <string>

#include "graphs/graph_data_storage.h"
#include "platform/drawing.h"

namespace orvo {

/// The kinds of charts, by number; the numbers in between are not drawn.
enum ChartKind : std::int32_t {
  kChartOverTime = 1,
  kChartNamedPie = 4,  ///< slices with names and shares
  kChartSharePie = 6,  ///< slices with shares alone; the legend names them
};

/// A colour that can be turned off.
struct OptionalColour {
  bool on = true;
  Argb colour = 0;
};

/// What a chart is to show and how.
struct ChartOptions {
  std::u16string title;
  std::u16string caption;
  std::u16string value_axis_title;
  bool show_legend = false;
  Argb image_background = 0xFFFFFFFF;
  OptionalColour plot_background{true, 0xFFF0F0FF};
  OptionalColour frame{true, 0xFFFFFFFF};
  /// A grid that is on without a colour, which would not be seen, is drawn in a light grey.
  OptionalColour grid{true, 0};
  bool has_fixed_range = false;
  double fixed_range = 0;
  const CZxGraphDataStorage* storage = nullptr;  ///< not owned; null for a chart without data
  double maximum = 1.0;
  double minimum = 0.0;
};

/// Whether there is something to draw: neither missing nor a value that has no place on an axis.
bool IsPresent(double value);

}  // namespace orvo

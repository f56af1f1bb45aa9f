#pragma once

#include <vector>

#include "graphs/graph_data_storage.h"
#include "platform/canvas.h"

namespace orvo {

/// The labels under the points of a chart over time. A label of date and time stands in two lines. Labels are left out,
/// at regular distances, where points are less than 20 pixels apart or their texts would touch.
class PointLabels {
 public:
  /// Looks for labels among that many points; none are found when `on` is false.
  PointLabels(const CZxGraphDataStorage& storage, std::uint32_t points, bool on);

  /// Room that they take below the plot.
  double height() const;
  /// Draws labels and tick marks below `plot`, whose points have that spacing; texts stay between `left` and `right`.
  void Draw(Canvas* canvas, const RectF& plot, double spacing, double left, double right) const;

 private:
  struct Label {
    double x = 0;
    std::vector<TextLine> lines;
    double width = 0;
  };

  std::vector<std::uint32_t> SpacedPoints(double spacing) const;
  std::vector<Label> MeasureLabels(const RectF& plot, double spacing) const;

  const CZxGraphDataStorage& storage_;
  std::vector<std::uint32_t> points_;  ///< those that have a label
  std::size_t lines_ = 0;
  FontMetrics font_;
};

}  // namespace orvo

#pragma once

#include <cstddef>
#include <vector>

#include "platform/drawing.h"

namespace orvo {

/// The circle of a pie, and what stands around it.
struct PieShape {
  PointF centre;
  double radius = 0;
  /// Between the circle and the labels.
  double gap = 0;
  double line_height = 0;
  /// Labels stay between these.
  double top = 0;
  double bottom = 0;
};

/// A label that is to stand beside a slice, whose middle is at `angle` (radians clockwise from the right).
struct PieLabelWish {
  double angle = 0;
  double share = 0;  ///< the label with the smallest share gives way when there is no room for all
};

/// Where a label has its place: at the right of the pie it begins at `x`, at the left it ends there.
struct PieLabelPlace {
  std::size_t label = 0;  ///< number of the wish
  bool on_right = true;
  double x = 0;
  double y = 0;        ///< of its middle
  bool moved = false;  ///< it stands so far from its slice that a line has to lead there
};

/// Places labels around a pie as near to their slices as they can stand without touching one another or the circle.
/// Labels that have no room are left out.
std::vector<PieLabelPlace> PlacePieLabels(const std::vector<PieLabelWish>& wishes, const PieShape& pie);

/// The line from a slice, whose middle is at `angle`, to where its label ends, which is outside of the circle: round
/// the circle to where the end is in sight, so that no other slice is crossed.
std::vector<PointF> LeaderLine(const PieShape& pie, double angle, PointF end);

}  // namespace orvo

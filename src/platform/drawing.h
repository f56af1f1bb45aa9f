#pragma once

#include <cstdint>

namespace orvo {

/// Opacity, red, green and blue in eight bits each, from the highest on.
using Argb = std::uint32_t;

// Positions and sizes of drawings are pixels from the upper left corner of the bitmap; y grows downwards. A pixel is a
// unit square: a line of width 1 is sharp when it runs through the middle of pixels (1.5, not 1).

struct PointF {
  double x = 0;
  double y = 0;
};

struct RectF {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  double right() const { return x + width; }
  double bottom() const { return y + height; }
  PointF centre() const { return {x + width / 2, y + height / 2}; }
};

/// How lines are drawn: joined and ended round.
struct Pen {
  Argb colour = 0xFF000000;
  double width = 1;
};

}  // namespace orvo

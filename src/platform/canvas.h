#pragma once

#include <span>

#include "platform/bitmap.h"
#include "platform/drawing.h"
#include "platform/export.h"
#include "platform/text_line.h"

namespace orvo {

/// Draws on a bitmap, which must outlive it, with smooth edges. What lies outside the bitmap is not seen; what cannot
/// be drawn (a position that is no number, no memory) is left out.
class ORVO_PLATFORM_API Canvas {
 public:
  explicit Canvas(Bitmap* bitmap);
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  ~Canvas();

  void DrawLine(PointF from, PointF to, const Pen& pen);
  /// The points, joined in order. A single point is a dot of the pen's width.
  void DrawLines(std::span<const PointF> points, const Pen& pen);

  void FillRectangle(const RectF& rectangle, Argb colour);
  void DrawRectangle(const RectF& rectangle, const Pen& pen);

  // Ellipses fill their rectangles. Pies are parts of ellipses: angles are radians clockwise from the right, `sweep` is
  // positive, and from a whole turn on there are no edges towards the centre.

  void FillEllipse(const RectF& bounds, Argb colour);
  void DrawEllipse(const RectF& bounds, const Pen& pen);
  void FillPie(const RectF& bounds, double start, double sweep, Argb colour);
  void DrawPie(const RectF& bounds, double start, double sweep, const Pen& pen);

  /// The line of text with its left end and base line there, moved to whole pixels.
  void DrawText(const TextLine& text, PointF base, Argb colour);
  /// The line of text reading upwards: it begins at `base` and goes up, its base line the vertical through it.
  void DrawTextUpwards(const TextLine& text, PointF base, Argb colour);

  /// Another bitmap, made to fill a rectangle.
  void DrawBitmap(const Bitmap& bitmap, const RectF& place);

 private:
  struct State;
  void Text(const TextLine& text, PointF base, double angle, Argb colour);
  std::unique_ptr<State> state_;
};

}  // namespace orvo

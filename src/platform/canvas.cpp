#include "platform/canvas.h"

#include <cairo.h>

#include <cmath>
#include <numbers>

#include "platform/bitmap_surface.h"
#include "platform/font_library.h"

namespace orvo {
namespace {

constexpr double kWholeTurn = 2 * std::numbers::pi;
/// Further out than any bitmap; greater numbers do not fit into Cairo's.
constexpr double kFarOut = 1e6;

bool IsDrawable(double x, double y) {
  return std::abs(x) <= kFarOut && std::abs(y) <= kFarOut;
}
bool IsDrawable(PointF point) {
  return IsDrawable(point.x, point.y);
}
bool IsDrawable(const RectF& r) {
  return IsDrawable(r.x, r.y) && IsDrawable(r.width, r.height);
}

void UseColour(cairo_t* cairo, Argb colour) {
  auto part = [&](int shift) { return (colour >> shift & 0xFF) / 255.0; };
  cairo_set_source_rgba(cairo, part(16), part(8), part(0), part(24));
}

void Stroke(cairo_t* cairo, const Pen& pen) {
  UseColour(cairo, pen.colour);
  cairo_set_line_width(cairo, pen.width);
  cairo_stroke(cairo);
}

void Fill(cairo_t* cairo, Argb colour) {
  UseColour(cairo, colour);
  cairo_fill(cairo);
}

bool RectanglePath(cairo_t* cairo, const RectF& r) {
  if (!IsDrawable(r)) return false;
  cairo_rectangle(cairo, r.x, r.y, r.width, r.height);
  return true;
}

bool PiePath(cairo_t* cairo, const RectF& bounds, double start, double sweep) {
  if (!IsDrawable(bounds) || !(bounds.width > 0) || !(bounds.height > 0) || !IsDrawable(start, sweep)) return false;
  const bool whole = sweep >= kWholeTurn;
  cairo_new_sub_path(cairo);
  cairo_save(cairo);
  cairo_translate(cairo, bounds.centre().x, bounds.centre().y);
  cairo_scale(cairo, bounds.width / 2, bounds.height / 2);
  if (!whole) cairo_move_to(cairo, 0, 0);
  cairo_arc(cairo, 0, 0, 1, start, whole ? start + kWholeTurn : start + sweep);
  cairo_close_path(cairo);
  cairo_restore(cairo);
  return true;
}

}  // namespace

struct Canvas::State {
  explicit State(cairo_surface_t* surface) : cairo(cairo_create(surface)) {}
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() { cairo_destroy(cairo); }

  cairo_t* cairo;
};

Canvas::Canvas(Bitmap* bitmap) : state_(std::make_unique<State>(bitmap->surface()->cairo)) {
  cairo_set_line_join(state_->cairo, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(state_->cairo, CAIRO_LINE_CAP_ROUND);
}

Canvas::~Canvas() = default;

void Canvas::DrawLine(PointF from, PointF to, const Pen& pen) {
  const PointF ends[] = {from, to};
  DrawLines(ends, pen);
}

void Canvas::DrawLines(std::span<const PointF> points, const Pen& pen) {
  for (const PointF& point : points) {
    if (IsDrawable(point)) cairo_line_to(state_->cairo, point.x, point.y);
  }
  if (points.size() == 1) cairo_close_path(state_->cairo);
  Stroke(state_->cairo, pen);
}

void Canvas::FillRectangle(const RectF& rectangle, Argb colour) {
  if (RectanglePath(state_->cairo, rectangle)) Fill(state_->cairo, colour);
}

void Canvas::DrawRectangle(const RectF& rectangle, const Pen& pen) {
  if (RectanglePath(state_->cairo, rectangle)) Stroke(state_->cairo, pen);
}

void Canvas::FillEllipse(const RectF& bounds, Argb colour) {
  FillPie(bounds, 0, kWholeTurn, colour);
}

void Canvas::DrawEllipse(const RectF& bounds, const Pen& pen) {
  DrawPie(bounds, 0, kWholeTurn, pen);
}

void Canvas::FillPie(const RectF& bounds, double start, double sweep, Argb colour) {
  if (PiePath(state_->cairo, bounds, start, sweep)) Fill(state_->cairo, colour);
}

void Canvas::DrawPie(const RectF& bounds, double start, double sweep, const Pen& pen) {
  if (PiePath(state_->cairo, bounds, start, sweep)) Stroke(state_->cairo, pen);
}

void Canvas::DrawText(const TextLine& text, PointF base, Argb colour) {
  Text(text, base, 0, colour);
}

void Canvas::DrawTextUpwards(const TextLine& text, PointF base, Argb colour) {
  Text(text, base, -kWholeTurn / 4, colour);
}

void Canvas::Text(const TextLine& text, PointF base, double angle, Argb colour) {
  if (!IsDrawable(base)) return;
  const TextLine::Layout& line = text.layout();
  auto lock = line.fonts->Lock();
  PangoLayoutLine* first = pango_layout_get_line_readonly(line.layout, 0);
  cairo_save(state_->cairo);
  UseColour(state_->cairo, colour);
  cairo_translate(state_->cairo, std::round(base.x), std::round(base.y));
  cairo_rotate(state_->cairo, angle);
  cairo_move_to(state_->cairo, -std::round(line.indent), 0);
  pango_cairo_show_layout_line(state_->cairo, first);
  cairo_new_path(state_->cairo);
  cairo_restore(state_->cairo);
}

void Canvas::DrawBitmap(const Bitmap& bitmap, const RectF& place) {
  if (!IsDrawable(place) || !(place.width > 0) || !(place.height > 0) || !bitmap.surface()) return;
  cairo_save(state_->cairo);
  cairo_translate(state_->cairo, place.x, place.y);
  cairo_scale(state_->cairo, place.width / bitmap.width(), place.height / bitmap.height());
  cairo_set_source_surface(state_->cairo, bitmap.surface()->cairo, 0, 0);
  // Without a fade at the edges.
  cairo_pattern_set_extend(cairo_get_source(state_->cairo), CAIRO_EXTEND_PAD);
  cairo_rectangle(state_->cairo, 0, 0, bitmap.width(), bitmap.height());
  cairo_fill(state_->cairo);
  cairo_restore(state_->cairo);
}

}  // namespace orvo

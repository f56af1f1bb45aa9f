#include "platform/text_line.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "platform/code_page.h"
#include "platform/font_library.h"
#include "platform/utf.h"

namespace orvo {
namespace {

// More than any picture is wide; shaping takes time and memory.
constexpr std::size_t kMostUnits = 500;

bool IsControl(char16_t unit) {
  return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029;
}

std::string Printable(std::u16string_view text) {
  if (text.size() > kMostUnits) text = text.substr(0, kMostUnits - IsHighSurrogate(text[kMostUnits - 1]));
  std::u16string printable(text);
  for (char16_t& unit : printable) {
    if (IsControl(unit)) unit = u' ';
  }
  return ToUtf8(printable);
}

double Pixels(int pango_units) {
  return static_cast<double>(pango_units) / PANGO_SCALE;
}

double WidthOf(PangoLayout* layout) {
  PangoRectangle box;
  pango_layout_line_get_extents(pango_layout_get_line_readonly(layout, 0), nullptr, &box);
  return Pixels(box.width);
}

}  // namespace

TextLine::Layout::~Layout() {
  auto lock = fonts->Lock();
  if (layout) g_object_unref(layout);
}

FontMetrics MeasureFont(const Font& font) {
  std::shared_ptr<FontLibrary> fonts = FontLibrary::Get();
  const FontLibrary::Description description = FontLibrary::Describe(font);
  auto lock = fonts->Lock();
  std::unique_ptr<PangoFontMetrics, FreeWith<pango_font_metrics_unref>> metrics(
      pango_context_get_metrics(fonts->context(), description.get(), nullptr));
  return {Pixels(pango_font_metrics_get_ascent(metrics.get())), Pixels(pango_font_metrics_get_descent(metrics.get()))};
}

TextLine::TextLine(std::u16string_view text, const Font& font, double most_width)
    : layout_(std::make_shared<Layout>(FontLibrary::Get())) {
  const FontLibrary::Description description = FontLibrary::Describe(font);
  const std::string printable = Printable(text);
  auto lock = layout_->fonts->Lock();
  PangoLayout* layout = layout_->layout = pango_layout_new(layout_->fonts->context());
  pango_layout_set_single_paragraph_mode(layout, TRUE);
  pango_layout_set_font_description(layout, description.get());
  pango_layout_set_text(layout, printable.data(), static_cast<int>(printable.size()));
  width_ = WidthOf(layout);
  if (width_ <= most_width) return;
  pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
  pango_layout_set_width(layout, static_cast<int>(std::max(most_width, 0.0) * PANGO_SCALE));
  // Pango makes the ellipsis as wide as the room that is left; what can be seen of the line is narrower.
  PangoRectangle seen;
  pango_layout_line_get_extents(pango_layout_get_line_readonly(layout, 0), &seen, nullptr);
  width_ = Pixels(seen.width);
  layout_->indent = Pixels(seen.x);
  elided_ = true;
}

}  // namespace orvo

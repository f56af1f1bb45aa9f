#include "platform/font_library.h"

#include <cmath>
#include <new>
#include <string>
#include <utility>

#include "platform/code_page.h"
#include "platform/graphics.h"
#include "platform/locale.h"

namespace orvo {
namespace {

constexpr double kPixelsPerInch = 96;

/// Grey edges, whatever the user's screen would like: pictures travel.
void SetPictureOptions(PangoContext* context) {
  std::unique_ptr<cairo_font_options_t, FreeWith<cairo_font_options_destroy>> options(cairo_font_options_create());
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_ON);
  pango_cairo_context_set_font_options(context, options.get());
}

}  // namespace

std::shared_ptr<FontLibrary> FontLibrary::Get() {
  static std::mutex mutex;
  static std::weak_ptr<FontLibrary> current;
  std::lock_guard lock(mutex);
  std::shared_ptr<FontLibrary> library = current.lock();
  if (!library) {
    library.reset(new FontLibrary);
    current = library;
  }
  return library;
}

PangoContext* FontLibrary::context() {
  if (context_) return context_.get();
  map_.reset(pango_cairo_font_map_new());
  pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(map_.get()), kPixelsPerInch);
  context_.reset(pango_font_map_create_context(map_.get()));
  SetPictureOptions(context_.get());
  // Which of several forms a Han character takes is a matter of the reader's language.
  pango_context_set_language(context_.get(), pango_language_from_string(ToUtf8(UserLocaleName()).c_str()));
  return context_.get();
}

FontLibrary::Description FontLibrary::Describe(const Font& font) {
  Description description(pango_font_description_new());
  pango_font_description_set_family(description.get(), ToUtf8(font.family).c_str());
  pango_font_description_set_size(description.get(), static_cast<int>(std::lround(font.points * PANGO_SCALE)));
  pango_font_description_set_weight(description.get(), font.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
  return description;
}

GraphicsStartup::GraphicsStartup() noexcept {
  try {
    fonts_ = FontLibrary::Get();
  } catch (const std::bad_alloc&) {
    // Whoever draws will meet it again.
    fonts_ = nullptr;
  }
}

}  // namespace orvo

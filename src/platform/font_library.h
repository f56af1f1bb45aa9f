#pragma once

#include <pango/pangocairo.h>

#include <memory>
#include <mutex>

#include "platform/text_line.h"

namespace orvo {

template <auto free>
struct FreeWith {
  template <class T>
  void operator()(T* object) const {
    free(object);
  }
};

/// Pango's fonts and what they were set up with, one for all threads: whoever works with them or with a layout made
/// from them holds the lock.
class FontLibrary {
 public:
  /// The one that somebody holds, or a new one. Raises std::bad_alloc.
  static std::shared_ptr<FontLibrary> Get();

  FontLibrary(const FontLibrary&) = delete;
  FontLibrary& operator=(const FontLibrary&) = delete;

  std::unique_lock<std::mutex> Lock() { return std::unique_lock(mutex_); }
  /// To be called under the lock.
  PangoContext* context();

  using Description = std::unique_ptr<PangoFontDescription, FreeWith<pango_font_description_free>>;
  static Description Describe(const Font& font);

 private:
  FontLibrary() = default;

  std::mutex mutex_;
  std::unique_ptr<PangoFontMap, FreeWith<g_object_unref>> map_;
  std::unique_ptr<PangoContext, FreeWith<g_object_unref>> context_;
};

/// What stands behind a TextLine.
struct TextLine::Layout {
  std::shared_ptr<FontLibrary> fonts;
  PangoLayout* layout = nullptr;
  double indent = 0;  ///< pixels at the left end that are not shown

  explicit Layout(std::shared_ptr<FontLibrary> library) : fonts(std::move(library)) {}
  Layout(const Layout&) = delete;
  Layout& operator=(const Layout&) = delete;
  ~Layout();
};

}  // namespace orvo

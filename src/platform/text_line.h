#pragma once

#include <limits>
#include <memory>
#include <string_view>

#include "platform/export.h"

namespace orvo {

/// A font by the name of its family. Where the system lacks the family, it chooses the nearest ("Arial" is Liberation
/// Sans, which has the same widths), and for letters that the font lacks it takes those of others. The size is in
/// points of 1/72 inch; pictures have 96 pixels to the inch, so 9 points are 12 pixels.
struct Font {
  std::u16string_view family;
  double points = 10;
  bool bold = false;
};

/// How far the letters of a font reach from the base line, in pixels.
struct FontMetrics {
  double ascent = 0;
  double descent = 0;
  double height() const { return ascent + descent; }
};

ORVO_PLATFORM_API FontMetrics MeasureFont(const Font& font);

/// One line of text, shaped and measured: every script reads in its own direction. Control characters count as blanks,
/// and text behind the first 500 characters is left out. Raises std::bad_alloc.
class ORVO_PLATFORM_API TextLine {
 public:
  /// A text that is wider than `most_width` pixels ends in "…" instead of what has no room.
  TextLine(std::u16string_view text, const Font& font, double most_width = std::numeric_limits<double>::infinity());

  /// Pixels that the line takes up from left to right.
  double width() const { return width_; }
  /// Whether something was left out for want of room.
  bool elided() const { return elided_; }

  struct Layout;
  const Layout& layout() const { return *layout_; }

 private:
  std::shared_ptr<Layout> layout_;
  double width_ = 0;
  bool elided_ = false;
};

}  // namespace orvo

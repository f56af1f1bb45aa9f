#pragma once

#include <cstddef>
#include <string>

namespace orvo {

// The look of the report, in points (1/72 inch). The origin of a page is its lower left corner and y grows upwards.

inline constexpr float kPdfLeftMargin = 50;   ///< where rows, shades and images of full width begin
inline constexpr float kPdfTopMargin = 50;    ///< from the page's upper edge to the baseline of its first line
inline constexpr float kPdfTextBottom = 74;   ///< regular text stands above this, never on it
inline constexpr float kPdfImageBottom = 50;  ///< an image must fit above this
inline constexpr float kPdfFooterX = 50;
inline constexpr float kPdfFooterY = 50;
inline constexpr float kPdfFontSize = 10;
inline constexpr float kPdfAfterText = 3;       ///< at least, from a text to the next column
inline constexpr float kPdfAfterLine = 10;      ///< at least, from a text to the page's right edge
inline constexpr float kPdfNarrowestText = 40;  ///< percent of its own width to which a text is narrowed
inline constexpr float kPdfToPageEdge = 1000;   ///< room of a text that has nothing to its right
inline constexpr float kPdfLinePitch = 12;      ///< from row to row, and to the second line of a column's header
inline constexpr float kPdfAfterTitle = 30;
inline constexpr float kPdfAfterHeader = 36;
inline constexpr float kPdfAfterImage = 24;
inline constexpr float kPdfShadeHeight = 10;
inline constexpr float kPdfSideMargins = 100;  ///< what a shade and an image of full width leave of the page's width

/// A colour of text or areas, each part from 0 to 1.
struct PdfColor {
  float red = 0;
  float green = 0;
  float blue = 0;
};

inline constexpr PdfColor kPdfBlack{0, 0, 0};
inline constexpr PdfColor kPdfShade{0.68F, 0.77F, 0.87F};

/// Where the next text's baseline begins or the next image's lower edge lies. Belongs to the section that draws.
/// At y = 0, where it begins, no row fits, so that every section starts a page of its own.
struct PdfCursor {
  float x = 0;
  float y = 0;

  void ResetX() { x = kPdfLeftMargin; }
  /// To the first line of a page of this height.
  void TopY(float page_height) { y = page_height - kPdfTopMargin; }
  void AdvanceX(float step) { x += step; }
  void NextLine() { y -= kPdfLinePitch; }
  void AfterTitle() { y -= kPdfAfterTitle; }
  void AfterHeader(float gap = kPdfAfterHeader) { y -= gap; }
  /// True when `rows` rows reach below the page's lower edge.
  bool RowsDontFit(unsigned rows) const { return static_cast<float>(rows) * kPdfLinePitch > y; }
};

/// Cuts a text of more than `length` characters (UTF-16 units) to its first `length` - 3 and "...", `length` in all.
/// `length` is 3 or more.
void FitText(std::u16string* text, std::size_t length);

}  // namespace orvo

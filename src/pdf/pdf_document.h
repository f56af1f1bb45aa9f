#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

#include "pdf/pdf_layout.h"
#include "platform/status.h"

namespace orvo {

struct PdfPage;     ///< a page; lives as long as its document, which owns it
struct PdfOutline;  ///< an entry of the outline; lives as long as its document, which owns it

inline constexpr std::size_t kPdfMaxPathBytes = 511;        ///< of a saved file's path, in the system's encoding
inline constexpr std::size_t kPdfMaxImagePathBytes = 1023;  ///< of an image file's path, in the system's encoding
inline constexpr std::size_t kPdfMaxGroupTitleBytes = 255;  ///< of the title of a root or group entry, as it is written
inline constexpr std::size_t kPdfMaxTextBytes = 65535;      ///< of any other text, as it is written

/// A PDF document while it is drawn, page by page, in memory, and the only place that knows the PDF library. Pages have
/// the library's own size, which is A4, upright, in whole points (595 x 841); all text is 10 points high. Drawing goes
/// to the page that was added last.
///
/// Texts are UTF-16 and are printed in the system code page (see platform/code_page.h). What it lacks prints as "?",
/// and so does a control character; a tab or line end prints as a blank. Paths are texts with backslashes. Lengths and
/// positions are points.
///
/// Operations that return nothing or a handle raise a status: E_FAIL for whatever the library reports, E_UNEXPECTED for
/// any other failure, a title or path beyond its limit included. Operations that return bool raise nothing and give
/// false for every failure. Drawing without a page fails. What the library itself reports is a lack of memory, as all
/// it is given has been looked at before; it leaves its pages half written then, so that every later operation fails as
/// well. Nothing here is to be called by two threads at a time.
class PdfDocument {
 public:
  /// Asked before the library gets so many bytes of memory; false leaves it without.
  using MemoryGate = std::function<bool(std::size_t bytes)>;

  /// Always succeeds; where the library gives no document, every operation fails with E_FAIL.
  explicit PdfDocument(MemoryGate gate = nullptr);
  PdfDocument(const PdfDocument&) = delete;
  PdfDocument& operator=(const PdfDocument&) = delete;
  ~PdfDocument();

  /// Has pages, images and everything else compressed when the document is saved.
  void SetCompression();

  /// Makes the entry that holds all others, opened and without a destination, and has readers show the outline.
  PdfOutline* CreateRootOutline(std::u16string_view title);
  /// Makes an entry below `parent`, closed and without a destination.
  PdfOutline* CreateChildOutline(PdfOutline* parent, std::u16string_view title);

  /// Writes the document beside the file, makes the bytes durable, and renames: what was there before, or the whole
  /// document. Raises E_FAIL when the library or the file system refuses; `cause`, where given, gets the platform's
  /// status for that or for a path that is too long, and S_OK otherwise.
  void Save(std::u16string_view path, Status* cause = nullptr);

  /// Adds a page with its footer. If `*bookmark_pending` and the title is not empty, clears the flag and makes an entry
  /// of that title below `parent` which leads to the page's upper left corner at full size; so a section gets one
  /// entry, for its first page.
  PdfPage* AddPage(PdfOutline* parent, std::u16string_view title, bool* bookmark_pending);
  /// The fixed line at the bottom of the current page. AddPage draws it.
  void DrawFooter();

  /// Draws one line in the regular face from (x, y). False, with nothing drawn, for y <= kPdfTextBottom and for a text
  /// of more than kPdfMaxTextBytes. A text that is wider than `room`, or than what is left of the page's width, is
  /// narrowed to end there, to kPdfNarrowestText of its width; of one that is wider even so, that room is what shows.
  bool DrawText(std::u16string_view text, float x, float y, float room = kPdfToPageEdge) noexcept;
  /// The same in a colour; what is drawn after it is black.
  bool DrawColoredText(std::u16string_view text, float x, float y, const PdfColor& color,
                       float room = kPdfToPageEdge) noexcept;
  /// Draws one line in the bold face from (x, y), however low, narrowed where the page ends.
  bool DrawBoldText(std::u16string_view text, float x, float y) noexcept;

  /// To be called once for each row of a section, before its cells. Fills the band of the row whose baseline is at y
  /// if `*shade` is set, and turns `*shade` over; it is false when a section starts and runs on across pages.
  void ShadeRow(float y, bool* shade);

  /// Zero for a page that is null.
  float PageWidth(const PdfPage* page) const;
  float PageHeight(const PdfPage* page) const;
  /// The page that was added last. Raises E_FAIL when there is none.
  PdfPage* CurrentPage() const;

  /// Draws a PNG file between the side margins below `*y`, which moves below the image and its gap. False, with nothing
  /// drawn and `*y` as it was, when the image's height in pixels (not the height that it will have) is more than what
  /// is left above kPdfImageBottom, and when the file is no PNG image of at most kPdfMaxImagePixels.
  bool DrawImageFitWidth(std::u16string_view path, float* y) noexcept;
  /// The same for an image drawn `height` high and centred, if `height` is left above kPdfImageBottom.
  bool DrawImageFitHeight(std::u16string_view path, float* y, float height) noexcept;

 private:
  class Library;
  std::unique_ptr<Library> library_;
};

}  // namespace orvo

#include "pdf/pdf_document.h"

#include <hpdf.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "pdf/pdf_memory.h"
#include "platform/bitmap.h"
#include "platform/code_page.h"
#include "platform/error.h"
#include "platform/file.h"
#include "platform/path.h"

namespace orvo {
namespace {

constexpr std::u16string_view kFooter = u"Network statistics report, created by OrvoReports.";

/// Pages per node of the page tree. Without nodes the library ends at 32,767 pages.
constexpr HPDF_UINT kPagesPerNode = 256;

/// The widest character of the faces ("@" in the regular one) and their figures at the size of all text, rounded up,
/// and a thousandth of that size, in which the faces count.
constexpr float kWidestCharacter = 10.2F;
constexpr float kFigure = 5.6F;
constexpr float kFaceUnit = kPdfFontSize / 1000;

/// How far a line reaches below its baseline, and from there to its top.
constexpr float kLineDepth = 3;
constexpr float kLineHeight = 13;

/// No less than the width of a text, and for numbers, dates and most addresses hardly more.
float MostWidth(std::string_view text) {
  float width = 0;
  for (const char c : text) width += c >= '-' && c <= ':' ? kFigure : kWidestCharacter;  // "-./" and figures and ":"
  return width;
}

/// What is handed to the file system at a time, and what a whole document ends with.
constexpr std::size_t kSaveBlock = std::size_t{1} << 18;
constexpr std::string_view kEnding = "\n%%EOF\n";

/// The boundary of the operations that raise: what is no status becomes E_UNEXPECTED.
template <class Body>
auto Operation(Body&& body) {
  try {
    return body();
  } catch (const StatusError&) {
    throw;
  } catch (...) {
    Raise(E_UNEXPECTED);
  }
}

/// The boundary of the operations that return bool.
template <class Body>
bool Attempt(Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return false;
  }
}

/// The text as the library takes it, in the system code page and without what no line of text can show.
void ToPrintable(std::u16string_view text, std::string* narrow) {
  // Addresses and figures, which is nearly everything.
  if (std::ranges::all_of(text, [](char16_t unit) { return unit >= u' ' && unit <= u'~'; })) {
    narrow->assign(text.begin(), text.end());
    return;
  }
  narrow->clear();
  Check(AppendSystemNarrow(text, narrow));
  for (char& byte : *narrow) {
    if (byte >= '\t' && byte <= '\r') {
      byte = ' ';
    } else if (byte < ' ' || byte == '\x7F') {
      byte = '?';
    }
  }
}

std::string GroupTitle(std::u16string_view title) {
  std::string narrow;
  ToPrintable(title, &narrow);
  if (narrow.size() > kPdfMaxGroupTitleBytes) Raise(E_UNEXPECTED);
  return narrow;
}

/// Whether a path has more bytes than that, as the file system takes it.
bool IsLonger(std::u16string_view path, std::size_t most_bytes) {
  std::string system;
  return Succeeded(PathToSystem(path, &system)) && system.size() > most_bytes;
}

/// The pixels row by row, three bytes each.
std::string RgbBytes(const Bitmap& bitmap) {
  std::string bytes;
  bytes.reserve(std::size_t{3} * static_cast<std::size_t>(bitmap.width()) * static_cast<std::size_t>(bitmap.height()));
  for (int y = 0; y < bitmap.height(); ++y) {
    for (int x = 0; x < bitmap.width(); ++x) {
      const Argb color = bitmap.PixelAt(x, y);
      for (int shift : {16, 8, 0}) bytes.push_back(static_cast<char>(color >> shift & 0xFF));
    }
  }
  return bytes;
}

}  // namespace

/// The library's document, and whether it is sound. Nothing is raised while the library runs: its error handler only
/// takes note, and its memory comes from functions that raise nothing.
class PdfDocument::Library {
 public:
  struct Face {
    const char* name;
    HPDF_Font font = nullptr;
  };

  explicit Library(MemoryGate gate) : memory_(std::move(gate)) {
    const PdfMemory::Use use(&memory_);
    document_ = HPDF_NewEx(TakeNote, PdfMemory::Take, PdfMemory::GiveBack, 0, this);
    failed_ = !document_ || HPDF_SetPagesConfiguration(document_, kPagesPerNode) != HPDF_OK;
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() {
    // Where the library has failed it is not asked to walk over what it left; its memory goes in any case.
    const PdfMemory::Use use(&memory_);
    if (!failed_) HPDF_Free(document_);
  }

  /// Runs calls of the library until one gives false; false when one did or the library reported anything.
  template <class Calls>
  bool Run(Calls&& calls) {
    if (failed_) return false;
    const PdfMemory::Use use(&memory_);
    const bool done = calls();
    if (!done || HPDF_GetError(document_) != HPDF_OK) failed_ = true;
    HPDF_ResetError(document_);
    return !failed_;
  }
  template <class Calls>
  void Must(Calls&& calls) {
    if (!Run(std::forward<Calls>(calls))) Raise(E_FAIL);
  }

  HPDF_Doc document() const { return document_; }
  /// Null when there is none.
  HPDF_Page page() const { return failed_ ? nullptr : HPDF_GetCurrentPage(document_); }

  HPDF_Page AddPage() {
    HPDF_Page page = nullptr;
    Must([&] { return (page = HPDF_AddPage(document_)) != nullptr; });
    page_face_ = nullptr;
    page_width_ = HPDF_Page_GetWidth(page);
    return page;
  }

  /// Raises what the conversion raises.
  bool Draw(Face* face, std::u16string_view text, float x, float y, float room, const PdfColor* color) {
    const HPDF_Page page = this->page();
    ToPrintable(text, &text_);
    if (!page || text_.size() > kPdfMaxTextBytes) return false;
    room = std::min(room, page_width_ - kPdfAfterLine - x);
    return Run([&] {
      return SetFace(page, face) && (!color || SetTextColor(page, *color)) && WriteWithin(page, x, y, room) &&
             (!color || SetFill(page, kPdfBlack));
    });
  }

  static bool SetFill(HPDF_Page page, const PdfColor& color) {
    return HPDF_Page_SetRGBFill(page, color.red, color.green, color.blue) == HPDF_OK;
  }

  /// Draws an image `width` wide and `height` high in the middle of the page below `*y`, if there is room for `needed`.
  bool Place(const Bitmap& bitmap, float needed, float width, float height, float* y) {
    const HPDF_Page page = this->page();
    if (!page || !(needed <= *y - kPdfImageBottom)) return false;
    const std::string pixels = RgbBytes(bitmap);
    const float left = HPDF_Page_GetWidth(page) / 2 - width / 2;
    const float bottom = *y - height;
    const bool drawn = Run([&] {
      const HPDF_Image image = HPDF_LoadRawImageFromMem(document_, reinterpret_cast<const HPDF_BYTE*>(pixels.data()),
                                                        static_cast<HPDF_UINT>(bitmap.width()),
                                                        static_cast<HPDF_UINT>(bitmap.height()), HPDF_CS_DEVICE_RGB, 8);
      return image && HPDF_Page_DrawImage(page, image, left, bottom, width, height) == HPDF_OK;
    });
    if (drawn) *y = bottom - kPdfAfterImage;
    return drawn;
  }

  /// Has the library put the whole document into memory.
  void Finish() {
    Must([&] { return HPDF_SaveToStream(document_) == HPDF_OK && HPDF_ResetStream(document_) == HPDF_OK; });
    left_ = HPDF_GetStreamSize(document_);
    block_.clear();
  }

  /// The bytes of the finished document, piece by piece; empty at its end. Raises E_FAIL when they are no whole
  /// document.
  std::string_view NextBlock() {
    if (left_ == 0) {
      if (!block_.ends_with(kEnding)) Raise(E_FAIL);
      return {};
    }
    // Never so little that the ending would be cut.
    auto read = static_cast<HPDF_UINT32>(left_ < 2 * kSaveBlock ? left_ : kSaveBlock);
    block_.resize(read);
    Must([&] {
      return HPDF_ReadFromStream(document_, reinterpret_cast<HPDF_BYTE*>(block_.data()), &read) == HPDF_OK &&
             read == block_.size();
    });
    left_ -= read;
    return block_;
  }

  Face regular{"Helvetica"};
  Face bold{"Helvetica-Bold"};

 private:
  static void TakeNote(HPDF_STATUS /*error*/, HPDF_STATUS /*detail*/, void* library) noexcept {
    static_cast<Library*>(library)->failed_ = true;
  }

  /// A page keeps its face until another is set, so only a change is written.
  bool SetFace(HPDF_Page page, Face* face) {
    if (page_face_ == face) return true;
    if (!face->font) face->font = HPDF_GetFont(document_, face->name, nullptr);
    page_face_ = face;
    return face->font && HPDF_Page_SetFontAndSize(page, face->font, kPdfFontSize) == HPDF_OK;
  }

  bool Write(HPDF_Page page, float x, float y) const {
    return HPDF_Page_BeginText(page) == HPDF_OK && HPDF_Page_TextOut(page, x, y, text_.c_str()) == HPDF_OK &&
           HPDF_Page_EndText(page) == HPDF_OK;
  }

  bool WriteWithin(HPDF_Page page, float x, float y, float room) const {
    // Most texts are so short that they need not be measured.
    if (MostWidth(text_) <= room) return Write(page, x, y);
    const HPDF_TextWidth measured = HPDF_Font_TextWidth(
        page_face_->font, reinterpret_cast<const HPDF_BYTE*>(text_.data()), static_cast<HPDF_UINT>(text_.size()));
    const float width = static_cast<float>(measured.width) * kFaceUnit;
    if (width <= room) return Write(page, x, y);
    // Cut off towards zero, so that the text never ends behind its room.
    const float percent = std::max(std::floor(100 * room / width), kPdfNarrowestText);
    return HPDF_Page_GSave(page) == HPDF_OK &&
           (width * percent <= 100 * room || KeepTo(page, x, y, std::max(room, 0.0F))) &&
           HPDF_Page_SetHorizontalScalling(page, percent) == HPDF_OK && Write(page, x, y) &&
           HPDF_Page_GRestore(page) == HPDF_OK;
  }

  /// Has the page show nothing that is drawn outside of a line from (x, y).
  static bool KeepTo(HPDF_Page page, float x, float y, float width) {
    return HPDF_Page_Rectangle(page, x, y - kLineDepth, width, kLineHeight) == HPDF_OK &&
           HPDF_Page_Clip(page) == HPDF_OK && HPDF_Page_EndPath(page) == HPDF_OK;
  }

  static bool SetTextColor(HPDF_Page page, const PdfColor& color) {
    return SetFill(page, color) && HPDF_Page_SetTextRenderingMode(page, HPDF_FILL) == HPDF_OK;
  }

  PdfMemory memory_;
  HPDF_Doc document_ = nullptr;
  bool failed_ = false;
  const Face* page_face_ = nullptr;  // of the current page; null for none yet
  float page_width_ = 0;             // of the current page; asking the library for it takes time
  std::string text_;
  std::string block_;     // of the document being saved
  std::size_t left_ = 0;  // bytes behind it
};

PdfDocument::PdfDocument(MemoryGate gate) : library_(std::make_unique<Library>(std::move(gate))) {}
PdfDocument::~PdfDocument() = default;

void PdfDocument::SetCompression() {
  library_->Must([&] { return HPDF_SetCompressionMode(library_->document(), HPDF_COMP_ALL) == HPDF_OK; });
}

PdfOutline* PdfDocument::CreateRootOutline(std::u16string_view title) {
  return Operation([&] {
    const std::string narrow = GroupTitle(title);
    HPDF_Outline root = nullptr;
    library_->Must([&] {
      return HPDF_SetPageMode(library_->document(), HPDF_PAGE_MODE_USE_OUTLINE) == HPDF_OK &&
             (root = HPDF_CreateOutline(library_->document(), nullptr, narrow.c_str(), nullptr)) &&
             HPDF_Outline_SetOpened(root, HPDF_TRUE) == HPDF_OK;
    });
    return static_cast<PdfOutline*>(root);
  });
}

PdfOutline* PdfDocument::CreateChildOutline(PdfOutline* parent, std::u16string_view title) {
  return Operation([&] {
    const std::string narrow = GroupTitle(title);
    HPDF_Outline child = nullptr;
    library_->Must([&] {
      child = HPDF_CreateOutline(library_->document(), parent, narrow.c_str(), nullptr);
      return child && HPDF_Outline_SetOpened(child, HPDF_FALSE) == HPDF_OK;
    });
    return static_cast<PdfOutline*>(child);
  });
}

PdfPage* PdfDocument::AddPage(PdfOutline* parent, std::u16string_view title, bool* bookmark_pending) {
  return Operation([&] {
    const HPDF_Page page = library_->AddPage();
    DrawFooter();
    if (*bookmark_pending && !title.empty()) {
      *bookmark_pending = false;
      std::string narrow;
      ToPrintable(title, &narrow);
      if (narrow.size() > kPdfMaxTextBytes) Raise(E_FAIL);
      library_->Must([&] {
        const HPDF_Outline entry = HPDF_CreateOutline(library_->document(), parent, narrow.c_str(), nullptr);
        const HPDF_Destination destination = entry ? HPDF_Page_CreateDestination(page) : nullptr;
        return destination && HPDF_Destination_SetXYZ(destination, 0, HPDF_Page_GetHeight(page), 1) == HPDF_OK &&
               HPDF_Outline_SetDestination(entry, destination) == HPDF_OK;
      });
    }
    return static_cast<PdfPage*>(page);
  });
}

void PdfDocument::DrawFooter() {
  Operation([&] {
    if (!library_->Draw(&library_->regular, kFooter, kPdfFooterX, kPdfFooterY, kPdfToPageEdge, nullptr)) Raise(E_FAIL);
  });
}

bool PdfDocument::DrawText(std::u16string_view text, float x, float y, float room) noexcept {
  return Attempt(
      [&] { return y - kPdfTextBottom > 0 && library_->Draw(&library_->regular, text, x, y, room, nullptr); });
}

bool PdfDocument::DrawColoredText(std::u16string_view text, float x, float y, const PdfColor& color,
                                  float room) noexcept {
  return Attempt(
      [&] { return y - kPdfTextBottom > 0 && library_->Draw(&library_->regular, text, x, y, room, &color); });
}

bool PdfDocument::DrawBoldText(std::u16string_view text, float x, float y) noexcept {
  return Attempt([&] { return library_->Draw(&library_->bold, text, x, y, kPdfToPageEdge, nullptr); });
}

void PdfDocument::ShadeRow(float y, bool* shade) {
  *shade = !*shade;
  if (*shade) return;
  const HPDF_Page page = CurrentPage();
  library_->Must([&] {
    return Library::SetFill(page, kPdfShade) &&
           HPDF_Page_Rectangle(page, kPdfLeftMargin, y, HPDF_Page_GetWidth(page) - kPdfSideMargins, kPdfShadeHeight) ==
               HPDF_OK &&
           HPDF_Page_Fill(page) == HPDF_OK && Library::SetFill(page, kPdfBlack);
  });
}

float PdfDocument::PageWidth(const PdfPage* page) const {
  return HPDF_Page_GetWidth(const_cast<PdfPage*>(page));
}

float PdfDocument::PageHeight(const PdfPage* page) const {
  return HPDF_Page_GetHeight(const_cast<PdfPage*>(page));
}

PdfPage* PdfDocument::CurrentPage() const {
  const HPDF_Page page = library_->page();
  if (!page) Raise(E_FAIL);
  return static_cast<PdfPage*>(page);
}

bool PdfDocument::DrawImageFitWidth(std::u16string_view path, float* y) noexcept {
  return Attempt([&] {
    if (IsLonger(path, kPdfMaxImagePathBytes)) return false;
    Bitmap bitmap;
    Check(Bitmap::Load(path, &bitmap));
    const float width = PageWidth(CurrentPage()) - kPdfSideMargins;
    const auto pixels_high = static_cast<float>(bitmap.height());
    return library_->Place(bitmap, pixels_high, width, pixels_high * width / static_cast<float>(bitmap.width()), y);
  });
}

bool PdfDocument::DrawImageFitHeight(std::u16string_view path, float* y, float height) noexcept {
  return Attempt([&] {
    if (IsLonger(path, kPdfMaxImagePathBytes)) return false;
    Bitmap bitmap;
    Check(Bitmap::Load(path, &bitmap));
    const float width = static_cast<float>(bitmap.width()) * height / static_cast<float>(bitmap.height());
    return library_->Place(bitmap, height, width, height, y);
  });
}

void PdfDocument::Save(std::u16string_view path, Status* cause) {
  if (cause) *cause = S_OK;
  Operation([&] {
    if (IsLonger(path, kPdfMaxPathBytes)) {
      if (cause) *cause = StatusFromError(kErrorNameTooLong);
      Raise(E_UNEXPECTED);
    }
    library_->Finish();
    // The library would write the file itself, but not look whether the system took the last of it.
    const Status written = ReplaceFile(path, [&] { return library_->NextBlock(); });
    if (cause && Failed(written)) *cause = written;
    if (Failed(written)) Raise(E_FAIL);
  });
}

}  // namespace orvo

#include "platform/bitmap.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string>

#include "platform/bitmap_surface.h"
#include "platform/canvas.h"
#include "platform/error.h"
#include "platform/file.h"
#include "platform/path.h"
#include "platform/system_file.h"

namespace orvo {
namespace {

constexpr std::uint64_t kLargestFile = std::uint64_t{128} << 20;
constexpr std::string_view kPngSignature = "\x89PNG\r\n\x1a\n";

bool IsAllowedSize(std::int64_t width, std::int64_t height) {
  return width > 0 && height > 0 && width <= Bitmap::kLongestSide && height <= Bitmap::kLongestSide &&
         width * height <= Bitmap::kMostPixels;
}

// Called back from C, which no exception may cross.
cairo_status_t AppendBytes(void* bytes, const unsigned char* data, unsigned int length) noexcept {
  try {
    static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
  } catch (...) {
    return CAIRO_STATUS_NO_MEMORY;
  }
}

cairo_status_t TakeBytes(void* left, unsigned char* data, unsigned int length) noexcept {
  auto& bytes = *static_cast<std::string_view*>(left);
  if (bytes.size() < length) return CAIRO_STATUS_READ_ERROR;
  std::memcpy(data, bytes.data(), length);
  bytes.remove_prefix(length);
  return CAIRO_STATUS_SUCCESS;
}

Status EncodePng(cairo_surface_t* surface, std::string* bytes) {
  const cairo_status_t status = cairo_surface_write_to_png_stream(surface, AppendBytes, bytes);
  if (status == CAIRO_STATUS_NO_MEMORY) return E_OUTOFMEMORY;
  return status == CAIRO_STATUS_SUCCESS ? S_OK : E_FAIL;
}

struct Encoder {
  std::u16string_view mime_type;
  Status (*encode)(cairo_surface_t* surface, std::string* bytes);
};

constexpr std::array kEncoders{Encoder{u"image/png", EncodePng}};

/// A number of a PNG file, which has the high byte first.
std::uint32_t Load32(std::string_view bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<std::uint8_t>(bytes[at + i]);
  return value;
}

}  // namespace

Bitmap::Bitmap() = default;
Bitmap::Bitmap(Bitmap&& other) noexcept = default;
Bitmap& Bitmap::operator=(Bitmap&& other) noexcept = default;
Bitmap::~Bitmap() = default;

Status Bitmap::Create(int width, int height, Argb background, Bitmap* bitmap) {
  if (!IsAllowedSize(width, height)) return E_FAIL;
  return Guard([&]() -> Status {
    auto surface = std::make_unique<Surface>(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
    if (!surface->sound()) return E_FAIL;
    bitmap->surface_ = std::move(surface);
    Canvas canvas(bitmap);
    const RectF all{0, 0, static_cast<double>(width), static_cast<double>(height)};
    canvas.FillRectangle(all, 0xFFFFFFFF);
    canvas.FillRectangle(all, background);
    return S_OK;
  });
}

Status Bitmap::Load(std::u16string_view path, Bitmap* bitmap) {
  return Guard([&]() -> Status {
    std::string bytes;
    Check(ReadFile(path, kLargestFile, &bytes));
    // The first chunk holds the size (ISO/IEC 15948, clause 11.2.2), which is judged before memory is taken for it.
    constexpr std::size_t kWidthAt = 16;
    constexpr std::size_t kHeaderEnd = 24;
    if (bytes.size() < kHeaderEnd || !bytes.starts_with(kPngSignature)) return E_INVALIDARG;
    const std::uint32_t width = Load32(bytes, kWidthAt);
    const std::uint32_t height = Load32(bytes, kWidthAt + 4);
    if (!IsAllowedSize(width, height)) return E_FAIL;
    std::string_view left = bytes;
    Surface read(cairo_image_surface_create_from_png_stream(TakeBytes, &left));
    if (!read.sound()) return E_INVALIDARG;
    Bitmap loaded;
    Check(Create(static_cast<int>(width), static_cast<int>(height), 0xFFFFFFFF, &loaded));
    cairo_t* cairo = cairo_create(loaded.surface_->cairo);
    cairo_set_source_surface(cairo, read.cairo, 0, 0);
    cairo_paint(cairo);
    cairo_destroy(cairo);
    *bitmap = std::move(loaded);
    return S_OK;
  });
}

int Bitmap::width() const {
  return surface_ ? cairo_image_surface_get_width(surface_->cairo) : 0;
}

int Bitmap::height() const {
  return surface_ ? cairo_image_surface_get_height(surface_->cairo) : 0;
}

Argb Bitmap::PixelAt(int x, int y) const {
  cairo_surface_flush(surface_->cairo);
  const unsigned char* row = cairo_image_surface_get_data(surface_->cairo) +
                             static_cast<std::ptrdiff_t>(cairo_image_surface_get_stride(surface_->cairo)) * y;
  Argb colour = 0;
  std::memcpy(&colour, row + static_cast<std::ptrdiff_t>(x) * 4, sizeof colour);
  return colour | 0xFF000000;
}

Status Bitmap::Save(std::u16string_view mime_type, std::u16string_view path) const {
  const auto* encoder = std::ranges::find(kEncoders, mime_type, &Encoder::mime_type);
  if (encoder == kEncoders.end() || !surface_) return E_FAIL;
  return Guard([&] {
    std::string bytes;
    Check(encoder->encode(surface_->cairo, &bytes));
    std::string system_path;
    Check(PathToSystem(path, &system_path));
    Replacement replacement(system_path);
    Check(WriteAll(replacement.descriptor(), bytes));
    // Pictures are made anew at any time: not worth waiting for the disk.
    replacement.Commit(/*durable=*/false);
  });
}

}  // namespace orvo

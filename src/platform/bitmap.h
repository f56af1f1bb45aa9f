#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/drawing.h"
#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// A picture of opaque pixels in memory, four bytes each.
class ORVO_PLATFORM_API Bitmap {
 public:
  /// A bitmap has at most this many pixels from one side to the other, and so many in all (64 MiB).
  static constexpr int kLongestSide = 8192;
  static constexpr std::int64_t kMostPixels = std::int64_t{1} << 24;

  Bitmap();
  Bitmap(Bitmap&& other) noexcept;
  Bitmap& operator=(Bitmap&& other) noexcept;
  ~Bitmap();

  /// Makes a bitmap of one colour, taken on white. E_FAIL for a size that is not positive or above the limits, and when
  /// memory is short.
  static Status Create(int width, int height, Argb background, Bitmap* bitmap);
  /// Reads a PNG file. The file's status, E_INVALIDARG for what is no PNG, E_FAIL for a size above the limits.
  static Status Load(std::u16string_view path, Bitmap* bitmap);

  int width() const;
  int height() const;
  /// The colour of a pixel, which must lie in the bitmap; opaque always.
  Argb PixelAt(int x, int y) const;

  /// Encodes the picture in the format of a MIME type and puts the file in place only when it is complete. E_FAIL for a
  /// type that has no encoder ("image/png" has one) and for an empty bitmap; else the file's status.
  Status Save(std::u16string_view mime_type, std::u16string_view path) const;

  struct Surface;
  Surface* surface() const { return surface_.get(); }

 private:
  std::unique_ptr<Surface> surface_;
};

}  // namespace orvo

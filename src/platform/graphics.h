#pragma once

#include <memory>

#include "platform/export.h"

namespace orvo {

class FontLibrary;

/// Keeps the drawing library started for as long as one exists in the process: the fonts that were looked up stay known
/// from one picture to the next. Starting costs next to nothing, as fonts are looked up when a text first needs them.
/// Drawing without one works, but looks every font up anew. All of drawing may be used from several threads, each with
/// bitmaps of its own.
class ORVO_PLATFORM_API GraphicsStartup {
 public:
  /// Never fails: what cannot be started shows when something is drawn.
  GraphicsStartup() noexcept;

 private:
  std::shared_ptr<FontLibrary> fonts_;
};

}  // namespace orvo

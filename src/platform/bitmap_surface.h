#pragma once

#include <cairo.h>

#include "platform/bitmap.h"

namespace orvo {

/// What stands behind a Bitmap.
struct Bitmap::Surface {
  explicit Surface(cairo_surface_t* owned) : cairo(owned) {}
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;
  ~Surface() { cairo_surface_destroy(cairo); }

  bool sound() const { return cairo_surface_status(cairo) == CAIRO_STATUS_SUCCESS; }

  cairo_surface_t* cairo;
};

}  // namespace orvo

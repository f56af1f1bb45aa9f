#pragma once

#include <memory>

#include "capture/source/byte_window.h"

namespace orvo {

/// Whether a file that begins with these four bytes is compressed by Zstandard, a skippable frame in front included.
bool IsZstd(const std::uint8_t* magic);

/// The bytes that the frames of a Zstandard file unpack to (RFC 8878). Frames that need a window of more than 128 MiB
/// are a problem, so memory is bounded by that, and while this many files are under way that need more than 8 MiB, one
/// more of them is, too. Memory is given back with the last byte.
std::unique_ptr<ByteReader> MakeZstdReader(ByteWindow packed);

inline constexpr int kMostLargeWindows = 16;

}  // namespace orvo

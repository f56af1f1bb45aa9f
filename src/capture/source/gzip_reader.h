#pragma once

#include <memory>

#include "capture/source/byte_window.h"

namespace orvo {

/// Whether a file that begins with these four bytes is compressed by gzip.
bool IsGzip(const std::uint8_t* magic);

/// The bytes that a gzip file of one or more members unpacks to (RFC 1952). Needs about 50 KiB, whatever the file
/// claims. Bytes behind the last member that begin none are a problem, told at the end.
std::unique_ptr<ByteReader> MakeGzipReader(ByteWindow packed);

}  // namespace orvo

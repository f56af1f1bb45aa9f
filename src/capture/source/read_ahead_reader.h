#pragma once

#include <memory>

#include "capture/source/byte_reader.h"

namespace orvo {

/// Reads a stream a few blocks ahead of its user, on a thread of its own: what the system copies, or what has to be
/// unpacked, then costs the user next to no time. The stream must be one that does not wait for anybody, as a file and
/// unlike a pipe, since the end waits for the thread. What is about to end, on a machine with one processor, and when a
/// few others are at it, is read without a thread.
std::unique_ptr<ByteReader> MakeReadAheadReader(std::unique_ptr<ByteReader> reader);

}  // namespace orvo

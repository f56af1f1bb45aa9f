#pragma once

#include "capture/context/category_views.h"
#include "platform/stream.h"

namespace orvo {

/// The format of docs/snapshot-format.md: the part of an epoch that reports read from a snapshot.

/// Writes at the stream's position; raises the stream's failing status, or STG_E_MEDIUMFULL when it takes no more.
void WriteSnapshot(const Epoch& epoch, IStream* stream);

/// Reads what WriteSnapshot wrote, and leaves the stream's position behind it. Whatever the stream holds, nothing is
/// used before its length, checksum and bounds were found right; raises E_FAIL when they are not, or the stream's
/// failing status.
EpochPtr ReadSnapshot(IStream* stream);

}  // namespace orvo

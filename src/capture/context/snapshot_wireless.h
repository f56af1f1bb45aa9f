#pragma once

#include <memory>

#include "capture/context/snapshot_bytes.h"
#include "capture/tables/wireless_tables.h"

namespace orvo {

/// Writes the content of a snapshot's section of wireless statistics.
void WriteWireless(const FrozenWireless& wireless, SnapshotWriter& out);
/// Reads it from untrusted bytes; raises E_FAIL for anything that no writer writes.
std::shared_ptr<const FrozenWireless> ReadWireless(SnapshotReader in);

}  // namespace orvo

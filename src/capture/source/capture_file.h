#pragma once

#include <memory>
#include <string>

#include "capture/source/packet_source.h"

namespace orvo {

/// Opens a capture in pcap or pcapng format, from a regular file or a pipe, and reads its header. `path` is in the
/// system's form. Null, and the cause in `error`, for a path that cannot be opened, a folder, a device, an empty
/// file, something that is no capture, or a link type that no decoder knows.
///
/// A file that is cut off or damaged behind its header gives every packet that can be read, and then a warning.
/// Frames longer than any link carries are lies of the file; they are taken at their captured length, with a warning.
std::unique_ptr<PacketSource> OpenCaptureFile(const std::string& path, SourceError* error);

}  // namespace orvo

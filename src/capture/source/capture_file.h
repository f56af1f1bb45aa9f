#pragma once

#include <memory>
#include <string>

#include "capture/source/packet_source.h"

namespace orvo {

/// Opens a capture in pcap or pcapng format, plain or compressed by gzip or zstd, from a regular file or a pipe, and
/// reads its header. What it is, is told by its first bytes, not by its name. `path` is in the system's form. Null, and
/// the cause in `error`, for a path that cannot be opened, a folder, a device, an empty file, or something that is no
/// capture.
///
/// A file that is cut off or damaged behind its header gives every packet that can be read, and then a warning.
/// Frames longer than any link carries are lies of the file; they are taken at their captured length, with a warning.
/// Frames of a link type that no decoder knows are given like all others, with a warning. Progress counts the bytes of
/// the file as it is stored.
std::unique_ptr<PacketSource> OpenCaptureFile(const std::string& path, SourceError* error);

}  // namespace orvo

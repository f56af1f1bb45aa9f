#pragma once

#include <memory>
#include <string_view>

#include "capture/source/byte_window.h"
#include "capture/source/packet_source.h"

namespace orvo {

/// Whether a file that begins with these four bytes is a pcapng file.
bool IsPcapng(const std::uint8_t* magic);

/// Reads captures of the pcapng format (draft-ietf-opsawg-pcapng): any number of sections, each with its byte order,
/// and of interfaces, each with its link type and time stamps; Enhanced, Simple and the obsolete Packet Blocks; drop
/// counts of packets and of Interface Statistics Blocks. Other blocks are passed over.
///
/// A simple packet has no time stamp and gets that of the packet before it, or 1970 without one. Interfaces are
/// numbered through all sections, up to 65,535. A packet that names no interface of its section is left out, with a
/// warning. Memory is bounded by the largest packet block, 16 MiB, and by 65,536 interfaces in a section; a file beyond
/// either is read up to there. Null and the cause in `error` for a first header that cannot be read.
std::unique_ptr<PacketSource> OpenPcapng(std::string_view path, ByteWindow window, SourceError* error);

}  // namespace orvo

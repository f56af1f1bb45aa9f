#pragma once

#include <memory>
#include <string_view>

#include "capture/source/byte_window.h"
#include "capture/source/packet_source.h"

namespace orvo {

/// Whether a file that begins with these four bytes is a classic capture file, of any order, resolution or variant.
bool IsPcap(const std::uint8_t* magic);

/// Reads captures of the classic format: versions 2.0 to 2.4, both byte orders, microseconds and nanoseconds
/// (draft-ietf-opsawg-pcap). The header's snap length is not relied on. Null and the cause in `error` for a header that
/// is cut off, and for variants whose records have other fields.
std::unique_ptr<PacketSource> OpenPcap(std::string_view path, ByteWindow window, SourceError* error);

}  // namespace orvo

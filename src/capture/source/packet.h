#pragma once

#include <cstdint>
#include <span>

namespace orvo {

using Bytes = std::span<const std::uint8_t>;

/// Link-layer header types, by the numbers of libpcap's DLT_ values.
inline constexpr std::uint32_t kLinkEthernet = 1;

/// One captured frame. The bytes belong to the source and are valid until its next packet is asked for.
struct Packet {
  std::uint64_t time = 0;             ///< nanoseconds since 1601-01-01 UTC
  Bytes bytes;                        ///< what was captured of the frame
  std::uint32_t original_length = 0;  ///< bytes of the frame on the wire, never less than were captured
  std::uint32_t link_type = kLinkEthernet;
  std::uint32_t interface_number = 0;  ///< counts from 0 within its source
};

}  // namespace orvo

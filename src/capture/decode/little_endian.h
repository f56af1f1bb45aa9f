#pragma once

#include <cstddef>
#include <cstdint>

#include "capture/source/packet.h"

namespace orvo {

// Numbers whose low byte comes first; the bytes are there.

inline std::uint16_t ReadLe16(Bytes bytes, std::size_t at) {
  return static_cast<std::uint16_t>(bytes[at] | (bytes[at + 1] << 8));
}

inline std::uint32_t ReadLe32(Bytes bytes, std::size_t at) {
  return ReadLe16(bytes, at) | (std::uint32_t{ReadLe16(bytes, at + 2)} << 16);
}

}  // namespace orvo

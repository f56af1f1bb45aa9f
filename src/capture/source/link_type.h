#pragma once

#include <cstdint>
#include <string>

namespace orvo {

/// The link type of a packet (see packet.h) for the number that capture files have for it. Files number a few link
/// types in another way than libpcap does in programs, since those numbers once differed from system to system.
std::uint32_t LinkTypeFromFile(std::uint32_t number);

/// "link type 147 (USER0)", or without the name when there is none.
std::string LinkTypeText(std::uint32_t link_type);

/// Whether the engine can look into frames of this type.
bool IsDecodable(std::uint32_t link_type);

}  // namespace orvo

#pragma once

#include <string>

#include "engine/address.h"

namespace orvo {

/// Appends an address in the usual notation of its type: dotted IPv4, IPv6 by RFC 5952, physical addresses with colons
/// in lower case, network.node in hexadecimal digits for IPX and decimal for AppleTalk, area.node for DECnet, the
/// number of a WAN link, a protocol's name. A record whose length does not fit its type is given as plain hexadecimal
/// digits, and an empty one as nothing.
void AppendAddress(const AddressRecord& record, std::u16string* text);

/// What stands before an address of that type; empty for the types that speak for themselves.
std::u16string_view AddressLabel(std::uint8_t type);

}  // namespace orvo

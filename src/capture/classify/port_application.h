#pragma once

#include <cstdint>

#include "capture/decode/packet_facts.h"
#include "capture/decode/protocol_registry.h"

namespace orvo {

/// Which layer's keys the ports of the innermost protocol are; kNone when it has none, for example behind a tunnel's
/// own ports, or in a fragment without them.
Layer PortLayer(const PacketFacts& facts);

/// The layer of the ports of an IP protocol; kNone when it has none.
Layer PortLayer(std::uint8_t ip_protocol);

/// The application that the ports stand for, 0 for none. The server's port is the one that is well known; of two, the
/// lower.
std::uint16_t PortApplication(const PacketFacts& facts);
std::uint16_t PortApplication(Layer layer, std::uint16_t port, std::uint16_t other_port);

}  // namespace orvo

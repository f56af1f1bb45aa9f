// VXLAN (RFC 7348 section 5): a network identifier, and an Ethernet frame.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 8;
constexpr std::uint8_t kHasIdentifier = 0x08;

Payload DecodeVxlan(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  if ((bytes[0] & kHasIdentifier) == 0) return {};
  return {{Layer::kEtherType, 0x6558}, bytes.subspan(kHeaderLength)};
}

constexpr std::array kKeys{LayerKey{Layer::kUdpTunnel, 4789}, LayerKey{Layer::kUdpPort, 4789}};
constexpr std::array kProtocols{Protocol{"VXLAN", kKeys, DecodeVxlan}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

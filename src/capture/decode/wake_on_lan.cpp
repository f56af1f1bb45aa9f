// The magic packet that wakes a sleeping machine: six bytes of ones, then its Ethernet address sixteen times.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kLength = 6 + 16 * 6;

Payload DecodeMagicPacket(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kLength) facts.MarkShort();
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x0842}};
constexpr std::array kProtocols{Protocol{"Wake-on-LAN", kKeys, DecodeMagicPacket}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

// LLDP (IEEE 802.1AB clause 8): elements of a type in 7 bits and a length in 9, to the one of type 0.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kElementHeader = 2;
constexpr std::uint16_t kLengthMask = 0x01FF;

Payload DecodeLldp(Bytes bytes, PacketFacts& facts) {
  while (bytes.size() >= kElementHeader) {
    std::uint16_t element = Read16(bytes, 0);
    if (element == 0) return {};
    std::size_t length = kElementHeader + (element & kLengthMask);
    if (length > bytes.size()) break;
    bytes = bytes.subspan(length);
  }
  facts.MarkShort();
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x88CC}};
constexpr std::array kProtocols{Protocol{"LLDP", kKeys, DecodeLldp}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

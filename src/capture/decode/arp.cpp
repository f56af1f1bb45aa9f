// Address resolution (RFC 826). The addresses in it are what it speaks about, not its ends: those are the frame's.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kFixedLength = 8;

Payload DecodeArp(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kFixedLength) {
    facts.MarkShort();
    return {};
  }
  std::size_t addresses = 2 * (std::size_t{bytes[4]} + bytes[5]);
  if (bytes.size() < kFixedLength + addresses) facts.MarkShort();
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x0806}, LayerKey{Layer::kEtherType, 0x8035}};
constexpr std::array kProtocols{Protocol{"ARP", kKeys, DecodeArp}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

// Slow protocols (IEEE 802.3 annex 57A), among them link aggregation: the first byte says which.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

Payload DecodeSlow(Bytes bytes, PacketFacts& facts) {
  if (bytes.empty()) {
    facts.MarkShort();
    return {};
  }
  return {{Layer::kSlowSubtype, bytes[0]}, bytes.subspan(1)};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x8809}};
constexpr std::array kProtocols{Protocol{"Slow Protocols", kKeys, DecodeSlow}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

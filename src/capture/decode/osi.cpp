// OSI network protocols, told apart by their first byte (ISO/IEC TR 9577).

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

Payload DecodeOsi(Bytes bytes, PacketFacts& facts) {
  if (bytes.empty()) {
    facts.MarkShort();
    return {};
  }
  return {{Layer::kOsi, bytes[0]}, bytes};
}

/// Over GRE the access point stands in for an EtherType (RFC 2784 refers to RFC 1701, which has it).
constexpr std::array kKeys{LayerKey{Layer::kSap, 0xFE}, LayerKey{Layer::kPpp, 0x0023},
                           LayerKey{Layer::kEtherType, 0x00FE}};
constexpr std::array kProtocols{Protocol{"OSI", kKeys, DecodeOsi}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

// Geneve (RFC 8926 section 3.4): options, and a packet of any EtherType.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 8;

Payload DecodeGeneve(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  unsigned version = bytes[0] >> 6U;
  if (version != 0) return {};
  std::size_t length = kHeaderLength + std::size_t{bytes[0] & 0x3FU} * 4;
  if (length > bytes.size()) {
    facts.MarkShort();
    return {};
  }
  return {{Layer::kEtherType, Read16(bytes, 2)}, bytes.subspan(length)};
}

constexpr std::array kKeys{LayerKey{Layer::kUdpTunnel, 6081}, LayerKey{Layer::kUdpPort, 6081}};
constexpr std::array kProtocols{Protocol{"Geneve", kKeys, DecodeGeneve}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

// Ethernet in IP (RFC 3378): a version, and the frame.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 2;

Payload DecodeEtherIp(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  return {{Layer::kEtherType, 0x6558}, bytes.subspan(kHeaderLength)};
}

constexpr std::array kKeys{LayerKey{Layer::kIpProtocol, 97}};
constexpr std::array kProtocols{Protocol{"EtherIP", kKeys, DecodeEtherIp}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

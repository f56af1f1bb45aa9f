// IGMP, versions 1 to 3 (RFC 1112, RFC 2236, RFC 3376): no message is shorter than eight bytes.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kShortest = 8;

Payload DecodeIgmp(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kShortest) facts.MarkShort();
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kIpProtocol, 2}};
constexpr std::array kProtocols{Protocol{"IGMP", kKeys, DecodeIgmp}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

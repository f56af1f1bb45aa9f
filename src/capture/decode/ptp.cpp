// Precision time (IEEE 1588 clause 13, annexes D to F), on Ethernet and over UDP.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 34;

Payload DecodePtp(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  std::size_t length = Read16(bytes, 2);
  if (length < kHeaderLength) facts.malformed = true;
  if (length > bytes.size()) facts.MarkShort();
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x88F7}, LayerKey{Layer::kUdpPort, 319},
                           LayerKey{Layer::kUdpPort, 320}};
constexpr std::array kProtocols{Protocol{"PTP", kKeys, DecodePtp}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

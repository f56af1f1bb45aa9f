// Spanning tree, rapid and multiple included (IEEE 802.1D clause 9, IEEE 802.1Q clause 14), also per VLAN.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kShortest = 4;
constexpr std::uint8_t kTopologyChange = 0x80;
constexpr std::size_t kConfiguration = 35;

Payload DecodeSpanningTree(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kShortest) {
    facts.MarkShort();
    return {};
  }
  if (Read16(bytes, 0) != 0) facts.malformed = true;
  if (bytes[3] != kTopologyChange && bytes.size() < kConfiguration) facts.MarkShort();
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kSap, 0x42}, LayerKey{Layer::kSnapCisco, 0x010B}};
constexpr std::array kProtocols{Protocol{"STP", kKeys, DecodeSpanningTree}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

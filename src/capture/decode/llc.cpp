// IEEE 802.3 frames that carry a length: the IEEE 802.2 header (clause 3) behind it, and its SNAP extension
// (IEEE 802 clause 9), which leads back to EtherTypes.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kLlcLength = 3;
constexpr std::size_t kSnapLength = 5;
constexpr std::uint16_t kRawIpx = 0xFFFF;  // IPX without an 802.2 header: its checksum field, always unused
constexpr std::uint32_t kIpxSap = 0xE0;

Payload DecodeLengthFrame(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kLlcLength) {
    facts.MarkShort();
    return {};
  }
  if (Read16(bytes, 0) == kRawIpx) return {{Layer::kSap, kIpxSap}, bytes};
  // Unnumbered frames have one control byte, the others two.
  std::size_t length = (bytes[2] & 3) == 3 ? kLlcLength : kLlcLength + 1;
  return {{Layer::kSap, bytes[0]}, Behind(bytes, length)};
}

Payload DecodeSnap(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kSnapLength) {
    facts.MarkShort();
    return {};
  }
  bool ether_type = bytes[0] == 0 && bytes[1] == 0 && (bytes[2] == 0 || bytes[2] == 0xF8);
  if (!ether_type) return {};
  return {{Layer::kEtherType, Read16(bytes, 3)}, bytes.subspan(kSnapLength)};
}

constexpr std::array kLengthKeys{LayerKey{Layer::kEthernetLength, 0}};
constexpr std::array kLengthCarries{Layer::kSap};
constexpr std::array kSnapKeys{LayerKey{Layer::kSap, 0xAA}};
constexpr std::array kSnapCarries{Layer::kEtherType};
constexpr std::array kProtocols{Protocol{"802.3", kLengthKeys, kLengthCarries, DecodeLengthFrame},
                                Protocol{"SNAP", kSnapKeys, kSnapCarries, DecodeSnap}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

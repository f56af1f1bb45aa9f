// VLAN tags, any of which may follow another (IEEE 802.1Q clause 9). A tag belongs to the frame that wears it, so that
// tagged and untagged traffic count as the same protocols.

#include <array>

#include "capture/decode/type_or_length.h"

namespace orvo {
namespace {

constexpr std::size_t kTagLength = 4;
constexpr std::uint8_t kMaxTags = 8;

Payload DecodeTag(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kTagLength || facts.vlan_tags == kMaxTags) {
    facts.MarkShort();
    return {};
  }
  ++facts.vlan_tags;
  return BehindTypeOrLength(Read16(bytes, 2), bytes.subspan(kTagLength), facts);
}

/// Customer tag, service tag, and the two that were in use before the service tag had a number.
constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x8100}, LayerKey{Layer::kEtherType, 0x88A8},
                           LayerKey{Layer::kEtherType, 0x9100}, LayerKey{Layer::kEtherType, 0x9200}};
constexpr std::array kProtocols{Protocol{"VLAN", kKeys, DecodeTag, false}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

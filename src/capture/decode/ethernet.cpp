// Ethernet frames (IEEE 802.3 clause 3) with any number of VLAN tags (IEEE 802.1Q clause 9).

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 14;
constexpr std::uint8_t kAddressLength = 6;
constexpr std::size_t kTagLength = 4;
constexpr std::uint8_t kMaxTags = 8;
constexpr std::uint16_t kFirstEtherType = 0x0600;
constexpr std::uint16_t kLongestLength = 1500;

constexpr bool IsTag(std::uint16_t type) {
  return type == 0x8100 || type == 0x88A8 || type == 0x9100;
}

Delivery DeliveryTo(const AddressRecord& destination) {
  if ((destination.bytes[0] & 1) == 0) return Delivery::kUnicast;
  for (std::size_t i = 0; i < kAddressLength; ++i) {
    if (destination.bytes[i] != 0xFF) return Delivery::kMulticast;
  }
  return Delivery::kBroadcast;
}

Payload DecodeEthernet(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  if (AddressPair* pair = facts.AddPair()) {
    SetAddress<kAddressLength>(&pair->destination, kAddressPhysical, bytes.data());
    SetAddress<kAddressLength>(&pair->source, kAddressPhysical, bytes.data() + kAddressLength);
    pair->delivery = DeliveryTo(pair->destination);
  }
  std::uint16_t type = Read16(bytes, kHeaderLength - 2);
  bytes = bytes.subspan(kHeaderLength);
  while (IsTag(type)) {
    if (bytes.size() < kTagLength || facts.vlan_tags == kMaxTags) {
      facts.MarkShort();
      return {};
    }
    ++facts.vlan_tags;
    type = Read16(bytes, 2);
    bytes = bytes.subspan(kTagLength);
  }
  if (type >= kFirstEtherType) return {{Layer::kEtherType, type}, bytes};
  if (type > kLongestLength) {
    facts.malformed = true;
    return {};
  }
  if (type > bytes.size()) facts.MarkShort();
  return {{Layer::kEthernetLength, 0}, Within(bytes, type)};
}

constexpr std::array kKeys{LayerKey{Layer::kLink, kLinkEthernet}};
constexpr std::array kCarries{Layer::kEtherType, Layer::kEthernetLength};
constexpr std::array kProtocols{Protocol{"Ethernet", kKeys, kCarries, DecodeEthernet}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

// Ethernet frames (IEEE 802.3 clause 3).

#include <array>

#include "capture/decode/type_or_length.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 14;
constexpr std::uint8_t kAddressLength = 6;

Payload DecodeEthernet(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  if (AddressPair* pair = facts.AddPhysicalPair()) {
    SetAddress<kAddressLength>(&pair->destination, kAddressPhysical, bytes.data());
    SetAddress<kAddressLength>(&pair->source, kAddressPhysical, bytes.data() + kAddressLength);
    pair->delivery = DeliveryToPhysical(pair->destination);
  }
  return BehindTypeOrLength(Read16(bytes, kHeaderLength - 2), bytes.subspan(kHeaderLength), facts);
}

/// Besides the link itself: bridged frames (RFC 1701), and Ethernet behind segment routing (RFC 8986 section 10.1).
constexpr std::array kKeys{LayerKey{Layer::kLink, kLinkEthernet}, LayerKey{Layer::kEtherType, 0x6558},
                           LayerKey{Layer::kIpProtocol, 143}};
constexpr std::array kProtocols{Protocol{"Ethernet", kKeys, DecodeEthernet}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

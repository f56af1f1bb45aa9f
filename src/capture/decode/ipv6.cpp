// IPv6 (RFC 8200 section 3).

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 40;
constexpr std::uint8_t kAddressLength = 16;

Payload DecodeIpv6(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  if ((bytes[0] >> 4) != 6) {
    facts.malformed = true;
    return {};
  }
  if (AddressPair* pair = facts.AddNetworkPair()) {
    SetAddress<kAddressLength>(&pair->source, kAddressIpv6, bytes.data() + 8);
    SetAddress<kAddressLength>(&pair->destination, kAddressIpv6, bytes.data() + 24);
    pair->delivery = bytes[24] == 0xFF ? Delivery::kMulticast : Delivery::kUnicast;
  }
  std::size_t length = Read16(bytes, 4);
  std::uint8_t next = bytes[6];
  if (kHeaderLength + length > bytes.size() && !facts.is_fragment) facts.MarkShort();
  // A length of 0 stands for a jumbogram (RFC 2675) or for a frame recorded before segmentation.
  if (length != 0) bytes = Within(bytes, kHeaderLength + length);
  facts.BeginDatagram(bytes);
  facts.ip_protocol = next;
  return {{Layer::kIpProtocol, next}, bytes.subspan(kHeaderLength)};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x86DD}, LayerKey{Layer::kPpp, 0x0057},
                           LayerKey{Layer::kIpProtocol, 41}};
constexpr std::array kProtocols{Protocol{"IPv6", kKeys, DecodeIpv6}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

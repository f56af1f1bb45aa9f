// IPv4 (RFC 791).

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 20;
constexpr std::uint8_t kAddressLength = 4;
constexpr std::uint16_t kMoreFragments = 0x2000;
constexpr std::uint16_t kOffsetMask = 0x1FFF;

Delivery DeliveryTo(const AddressRecord& destination) {
  const auto& bytes = destination.bytes;
  if ((bytes[0] & 0xF0) == 0xE0) return Delivery::kMulticast;  // RFC 5771
  bool all_ones = (bytes[0] & bytes[1] & bytes[2] & bytes[3]) == 0xFF;
  return all_ones ? Delivery::kBroadcast : Delivery::kUnicast;
}

Payload DecodeIpv4(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  std::size_t header = std::size_t{bytes[0] & 0x0FU} * 4;
  std::size_t total = Read16(bytes, 2);
  // Frames that were recorded before the interface cut them into segments carry a length of 0.
  if (total == 0) total = bytes.size();
  if ((bytes[0] >> 4) != 4 || header < kHeaderLength || total < header) {
    facts.malformed = true;
    return {};
  }
  if (AddressPair* pair = facts.AddNetworkPair()) {
    SetAddress<kAddressLength>(&pair->source, kAddressIp, bytes.data() + 12);
    SetAddress<kAddressLength>(&pair->destination, kAddressIp, bytes.data() + 16);
    pair->delivery = DeliveryTo(pair->destination);
  }
  if (total > bytes.size() && !facts.is_fragment) facts.MarkShort();
  bytes = Within(bytes, total);
  facts.BeginDatagram(bytes);
  facts.ip_protocol = bytes[9];
  std::uint16_t fragment = Read16(bytes, 6);
  bool later_fragment = (fragment & kOffsetMask) != 0;
  if (later_fragment || (fragment & kMoreFragments) != 0) facts.is_fragment = true;
  return {{Layer::kIpProtocol, bytes[9]}, Behind(bytes, header), !later_fragment};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x0800}, LayerKey{Layer::kSap, 0x06},
                           LayerKey{Layer::kPpp, 0x0021}, LayerKey{Layer::kIpProtocol, 4}};
constexpr std::array kProtocols{Protocol{"IPv4", kKeys, DecodeIpv4}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

// AppleTalk datagrams with the long header of EtherTalk phase 2 (Inside AppleTalk, chapter 4; over PPP RFC 1378).

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 13;
constexpr std::uint16_t kLengthMask = 0x03FF;
constexpr std::uint8_t kAddressLength = 3;
constexpr std::uint8_t kBroadcastNode = 255;

void SetAppleTalkAddress(AddressRecord* record, Bytes header, std::size_t network, std::size_t node) {
  const std::uint8_t bytes[] = {header[network], header[network + 1], header[node]};
  SetAddress<kAddressLength>(record, kAddressAppleTalk, bytes);
}

Payload DecodeDatagram(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  std::size_t length = Read16(bytes, 0) & kLengthMask;
  if (length < kHeaderLength) {
    facts.malformed = true;
    return {};
  }
  if (AddressPair* pair = facts.AddNetworkPair()) {
    SetAppleTalkAddress(&pair->destination, bytes, 4, 8);
    SetAppleTalkAddress(&pair->source, bytes, 6, 9);
    pair->delivery = bytes[8] == kBroadcastNode ? Delivery::kBroadcast : Delivery::kUnicast;
  }
  if (length > bytes.size()) facts.MarkShort();
  return {{Layer::kDdpType, bytes[12]}, Behind(Within(bytes, length), kHeaderLength)};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x809B}, LayerKey{Layer::kPpp, 0x0029}};
constexpr std::array kProtocols{Protocol{"AppleTalk", kKeys, DecodeDatagram}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

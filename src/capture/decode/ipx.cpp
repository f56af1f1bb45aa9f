// IPX, in each of its four framings and over PPP (RFC 1552): checksum, length, hops, type, then network, node and
// socket of the destination and of the source.

#include <algorithm>
#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 30;
constexpr std::size_t kDestination = 6;
constexpr std::size_t kSource = 18;
constexpr std::size_t kNode = 4;  ///< within an address
constexpr std::uint8_t kAddressLength = 10;

/// The service's socket: a number below those that clients are given; of two, the lower.
std::uint32_t ServiceSocket(Bytes header) {
  constexpr std::uint16_t kFirstDynamic = 0x4000;
  std::uint16_t to = Read16(header, kDestination + kAddressLength);
  std::uint16_t from = Read16(header, kSource + kAddressLength);
  auto [low, high] = std::minmax(to, from);
  return low != 0 && low < kFirstDynamic ? low : high;
}

Payload DecodeIpx(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  std::size_t length = Read16(bytes, 2);
  if (length < kHeaderLength) {
    facts.malformed = true;
    return {};
  }
  if (AddressPair* pair = facts.AddNetworkPair()) {
    SetAddress<kAddressLength>(&pair->destination, kAddressIpx, bytes.data() + kDestination);
    SetAddress<kAddressLength>(&pair->source, kAddressIpx, bytes.data() + kSource);
    Bytes node = bytes.subspan(kDestination + kNode, kAddressLength - kNode);
    bool all = std::all_of(node.begin(), node.end(), [](std::uint8_t byte) { return byte == 0xFF; });
    pair->delivery = all ? Delivery::kBroadcast : Delivery::kUnicast;
  }
  if (length > bytes.size()) facts.MarkShort();
  return {{Layer::kIpxSocket, ServiceSocket(bytes)}, Behind(Within(bytes, length), kHeaderLength)};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x8137}, LayerKey{Layer::kSap, 0xE0},
                           LayerKey{Layer::kPpp, 0x002B}};
constexpr std::array kProtocols{Protocol{"IPX", kKeys, DecodeIpx}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

// DECnet phase IV routing messages (DNA Routing Layer, version 2.0, section 7; over PPP
// RFC 1376). Numbers are little-endian.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kLengthField = 2;
constexpr std::uint8_t kAddressLength = 2;
constexpr std::uint8_t kIsPadding = 0x80;
constexpr std::uint8_t kIsControl = 0x01;

/// What stands where in one kind of message. An offset of 0 stands for no such field.
struct Layout {
  std::uint8_t mask;
  std::uint8_t value;  ///< of the flags under the mask
  std::size_t length;  ///< of the header
  std::size_t destination;
  std::size_t source;
};

/// Identifiers of nodes are Ethernet addresses that end with the node's address; the offsets are those of that end.
constexpr std::array kLayouts{
    Layout{0x07, 0x06, 21, 7, 15},  // data, long header
    Layout{0x07, 0x02, 6, 1, 3},    // data, short header
    Layout{0x0F, 0x0B, 19, 0, 8},   // hello of a router
    Layout{0x0F, 0x0D, 32, 0, 8},   // hello of an end node
    Layout{0x0F, 0x07, 4, 0, 1},    // level 1 routing
    Layout{0x0F, 0x09, 4, 0, 1},    // level 2 routing
};

void SetDecnetAddress(AddressRecord* record, Bytes message, std::size_t at) {
  const std::uint8_t bytes[] = {message[at + 1], message[at]};
  SetAddress<kAddressLength>(record, kAddressDecnet, bytes);
}

void ReadMessage(Bytes bytes, PacketFacts& facts) {
  for (const Layout& layout : kLayouts) {
    if ((bytes[0] & layout.mask) != layout.value) continue;
    if (bytes.size() < layout.length) {
      facts.MarkShort();
      return;
    }
    AddressPair* pair = facts.AddNetworkPair();
    if (!pair) return;
    SetDecnetAddress(&pair->source, bytes, layout.source);
    if (layout.destination != 0) SetDecnetAddress(&pair->destination, bytes, layout.destination);
    // Control messages go to all routers or all end nodes.
    pair->delivery = (bytes[0] & kIsControl) != 0 ? Delivery::kMulticast : Delivery::kUnicast;
    return;
  }
}

Payload DecodeDecnet(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kLengthField + 1) {
    facts.MarkShort();
    return {};
  }
  std::size_t length = bytes[0] | (std::size_t{bytes[1]} << 8);
  bytes = bytes.subspan(kLengthField);
  if (length > bytes.size()) facts.MarkShort();
  bytes = Within(bytes, length);
  // The first byte of padding says how much there is, itself included.
  if (!bytes.empty() && (bytes[0] & kIsPadding) != 0) bytes = Behind(bytes, bytes[0] & ~unsigned{kIsPadding});
  if (bytes.empty()) {
    facts.MarkShort();
    return {};
  }
  ReadMessage(bytes, facts);
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x6003}, LayerKey{Layer::kPpp, 0x0027}};
constexpr std::array kProtocols{Protocol{"DECnet", kKeys, DecodeDecnet}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

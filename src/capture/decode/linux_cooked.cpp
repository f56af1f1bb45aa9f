// Captures of several Linux interfaces at once (LINKTYPE_LINUX_SLL, LINKTYPE_LINUX_SLL2), whose link headers are
// replaced by one that names the sender alone.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::uint8_t kPhysicalLength = 6;

/// Where the fields of a version stand.
struct Layout {
  std::size_t length;
  std::size_t packet_type;  ///< its lower byte
  std::size_t hardware;
  std::size_t address_length;  ///< its lower byte
  std::size_t address;
  std::size_t protocol;
};
constexpr Layout kVersion1{16, 1, 2, 5, 6, 14};
constexpr Layout kVersion2{20, 10, 8, 11, 12, 0};

Delivery DeliveryOf(std::uint8_t packet_type) {
  return packet_type == 1 ? Delivery::kBroadcast : packet_type == 2 ? Delivery::kMulticast : Delivery::kUnicast;
}

/// Whether the hardware's addresses are of the kind of Ethernet's. Tunnels have none or IP addresses, and loopback's is
/// always zero.
bool HasPhysicalAddress(std::uint16_t hardware, std::uint8_t length) {
  constexpr std::uint16_t kLoopback = 772;
  return length == kPhysicalLength && hardware != kLoopback;
}

Payload BehindProtocol(std::uint16_t hardware, std::uint16_t protocol, Bytes bytes) {
  constexpr std::uint16_t kNetlink = 824;
  constexpr std::uint16_t kNovell = 1;
  constexpr std::uint16_t kLlc = 4;
  constexpr std::uint16_t kFirstEtherType = 0x0600;
  if (hardware == kNetlink) return {};
  if (protocol == kNovell) return {{Layer::kEthernetLength, 0}, bytes};
  if (protocol == kLlc) return {{Layer::kLlc, 0}, bytes};
  if (protocol < kFirstEtherType) return {};
  return {{Layer::kEtherType, protocol}, bytes};
}

template <const Layout& layout>
Payload DecodeCooked(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < layout.length) {
    facts.MarkShort();
    return {};
  }
  std::uint16_t hardware = Read16(bytes, layout.hardware);
  if (HasPhysicalAddress(hardware, bytes[layout.address_length])) {
    if (AddressPair* pair = facts.AddPhysicalPair()) {
      SetAddress<kPhysicalLength>(&pair->source, kAddressPhysical, bytes.data() + layout.address);
      pair->delivery = DeliveryOf(bytes[layout.packet_type]);
    }
  }
  return BehindProtocol(hardware, Read16(bytes, layout.protocol), bytes.subspan(layout.length));
}

constexpr std::array kVersion1Keys{LayerKey{Layer::kLink, 113}};
constexpr std::array kVersion2Keys{LayerKey{Layer::kLink, 276}};
constexpr std::array kProtocols{Protocol{"Linux Cooked", kVersion1Keys, DecodeCooked<kVersion1>},
                                Protocol{"Linux Cooked 2", kVersion2Keys, DecodeCooked<kVersion2>}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

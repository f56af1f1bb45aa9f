// The header of IEEE 802.2 (clauses 3 and 5): in Ethernet frames that carry a length, and on other links.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 3;
constexpr std::uint8_t kGlobalSap = 0xFF;
constexpr std::uint8_t kGroupBit = 1;

Payload DecodeLlc(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  std::uint8_t control = bytes[2];
  bool unnumbered = (control & 3) == 3;
  // Unnumbered frames have one control byte, the others two. Only information frames and unnumbered information
  // carry packets; supervision, identification and tests stay among the access points.
  bool carries = (control & 1) == 0 || (control & 0xEF) == 0x03;
  std::uint32_t sap = bytes[0] == kGlobalSap ? kGlobalSap : bytes[0] & ~std::uint32_t{kGroupBit};
  return {{Layer::kSap, sap}, Behind(bytes, unnumbered ? kHeaderLength : kHeaderLength + 1), carries};
}

/// An early form of IPX stands in frames with a length without this header: its checksum is always 0xFFFF.
Payload DecodeLengthFrame(Bytes bytes, PacketFacts& facts) {
  constexpr std::uint32_t kIpxSap = 0xE0;
  if (bytes.size() >= kHeaderLength && Read16(bytes, 0) == 0xFFFF) return {{Layer::kSap, kIpxSap}, bytes};
  return DecodeLlc(bytes, facts);
}

constexpr std::array kLengthKeys{LayerKey{Layer::kEthernetLength, 0}};
constexpr std::array kLlcKeys{LayerKey{Layer::kLlc, 0}};
constexpr std::array kProtocols{Protocol{"802.3", kLengthKeys, DecodeLengthFrame},
                                Protocol{"LLC", kLlcKeys, DecodeLlc}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

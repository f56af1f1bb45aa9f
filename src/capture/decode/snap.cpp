// The SNAP extension of IEEE 802.2 headers (IEEE 802 clause 9): an organisation, and a number that it gave out.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 5;
constexpr std::uint32_t kEncapsulated = 0x000000;  // RFC 1042
constexpr std::uint32_t kTunnelled = 0x0000F8;     // IEEE 802.1H
constexpr std::uint32_t kCisco = 0x00000C;
constexpr std::uint32_t kApple = 0x080007;
constexpr std::uint32_t kIeee8021 = 0x0080C2;

/// Frames bridged across other links (RFC 2427 section 4.2): the kind, and the frame.
Payload BehindBridge(std::uint16_t kind, Bytes bytes) {
  constexpr std::uint32_t kBridgedEthernet = 0x6558;
  constexpr std::uint32_t kSpanningTreeSap = 0x42;
  switch (kind) {
    case 0x0001:  // with its checksum
    case 0x0007: return {{Layer::kEtherType, kBridgedEthernet}, bytes};
    case 0x000E: return {{Layer::kSap, kSpanningTreeSap}, bytes};
    default: return {};
  }
}

Payload DecodeSnap(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  std::uint16_t number = Read16(bytes, 3);
  std::uint32_t organisation = Read32(bytes, 0) >> 8;
  bytes = bytes.subspan(kHeaderLength);
  switch (organisation) {
    case kEncapsulated:
    case kTunnelled:
    case kApple:  // which gave its protocols the numbers that they have as EtherTypes
      return {{Layer::kEtherType, number}, bytes};
    case kCisco: return {{Layer::kSnapCisco, number}, bytes};
    case kIeee8021: return BehindBridge(number, bytes);
    default: return {};
  }
}

constexpr std::array kKeys{LayerKey{Layer::kSap, 0xAA}};
constexpr std::array kProtocols{Protocol{"SNAP", kKeys, DecodeSnap}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

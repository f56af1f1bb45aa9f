// IPv6 and its extension headers (RFC 8200 sections 3 and 4).

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 40;
constexpr std::uint8_t kAddressLength = 16;
constexpr std::size_t kExtensionUnit = 8;
constexpr int kMaxExtensions = 16;
constexpr std::uint8_t kFragmentHeader = 44;
constexpr std::uint16_t kOffsetMask = 0xFFF8;

/// Hop-by-hop options, routing, destination options, mobility (RFC 6275), HIP (RFC 7401) and shim6 (RFC 5533) share
/// one layout: the next header, and the length in units of 8 bytes without the first.
constexpr bool IsPlainExtension(std::uint8_t number) {
  return number == 0 || number == 43 || number == 60 || number == 135 || number == 139 || number == 140;
}

Payload DecodeExtensions(std::uint8_t next, Bytes bytes, PacketFacts& facts) {
  for (int i = 0; i < kMaxExtensions; ++i) {
    bool fragment = next == kFragmentHeader;
    if (!fragment && !IsPlainExtension(next)) return {{Layer::kIpProtocol, next}, bytes};
    if (bytes.size() < kExtensionUnit) {
      facts.MarkShort();
      return {};
    }
    std::size_t length = fragment ? kExtensionUnit : (std::size_t{bytes[1]} + 1) * kExtensionUnit;
    next = bytes[0];
    if (fragment) {
      facts.is_fragment = facts.is_fragment || (Read16(bytes, 2) & (kOffsetMask | 1)) != 0;
      bool later = (Read16(bytes, 2) & kOffsetMask) != 0;
      if (later) return {{Layer::kIpProtocol, next}, bytes.subspan(length), false};
    }
    if (length > bytes.size()) {
      facts.MarkShort();
      return {};
    }
    bytes = bytes.subspan(length);
  }
  facts.malformed = true;
  return {};
}

Payload DecodeIpv6(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  if ((bytes[0] >> 4) != 6) {
    facts.malformed = true;
    return {};
  }
  if (AddressPair* pair = facts.AddPair()) {
    SetAddress(&pair->source, kAddressIpv6, bytes.data() + 8, kAddressLength);
    SetAddress(&pair->destination, kAddressIpv6, bytes.data() + 24, kAddressLength);
    pair->delivery = bytes[24] == 0xFF ? Delivery::kMulticast : Delivery::kUnicast;
  }
  std::size_t length = Read16(bytes, 4);
  std::uint8_t next = bytes[6];
  if (kHeaderLength + length > bytes.size()) facts.MarkShort();
  // A length of 0 stands for a jumbogram (RFC 2675) or for a frame recorded before segmentation.
  if (length != 0) bytes = Within(bytes, kHeaderLength + length);
  facts.BeginDatagram(bytes);
  Payload payload = DecodeExtensions(next, bytes.subspan(kHeaderLength), facts);
  facts.ip_protocol = static_cast<std::uint8_t>(payload.key.number);
  return payload;
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x86DD}, LayerKey{Layer::kIpProtocol, 41}};
constexpr std::array kCarries{Layer::kIpProtocol};
constexpr std::array kProtocols{Protocol{"IPv6", kKeys, kCarries, DecodeIpv6}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

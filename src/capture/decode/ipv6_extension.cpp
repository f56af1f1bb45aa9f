// The extension headers of IPv6 (RFC 8200 section 4). They belong to the header before them and are no protocols of
// their own.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kUnit = 8;
constexpr std::uint16_t kOffsetMask = 0xFFF8;
constexpr std::uint16_t kMoreFragments = 1;

/// What follows a header, of which there are `length` bytes.
Payload BehindExtension(Bytes bytes, std::size_t length, PacketFacts& facts) {
  if (length > bytes.size()) {
    facts.MarkShort();
    return {};
  }
  facts.ip_protocol = bytes[0];
  return {{Layer::kIpProtocol, bytes[0]}, bytes.subspan(length)};
}

/// The next header, and the length in units of 8 bytes without the first.
Payload DecodeExtension(Bytes bytes, PacketFacts& facts) {
  std::size_t length = bytes.size() < kUnit ? kUnit : (std::size_t{bytes[1]} + 1) * kUnit;
  return BehindExtension(bytes, length, facts);
}

Payload DecodeFragment(Bytes bytes, PacketFacts& facts) {
  Payload payload = BehindExtension(bytes, kUnit, facts);
  if (bytes.size() < kUnit) return payload;
  std::uint16_t offset = Read16(bytes, 2);
  // A datagram of one fragment is whole (RFC 6946).
  if ((offset & (kOffsetMask | kMoreFragments)) != 0) facts.is_fragment = true;
  payload.has_header = (offset & kOffsetMask) == 0;
  return payload;
}

/// Hop-by-hop options, routing, destination options, mobility (RFC 6275), HIP (RFC 7401), shim6 (RFC 5533).
constexpr std::array kPlainKeys{LayerKey{Layer::kIpProtocol, 0},   LayerKey{Layer::kIpProtocol, 43},
                                LayerKey{Layer::kIpProtocol, 60},  LayerKey{Layer::kIpProtocol, 135},
                                LayerKey{Layer::kIpProtocol, 139}, LayerKey{Layer::kIpProtocol, 140}};
constexpr std::array kFragmentKeys{LayerKey{Layer::kIpProtocol, 44}};
constexpr std::array kProtocols{Protocol{"IPv6 Extension", kPlainKeys, DecodeExtension, false},
                                Protocol{"IPv6 Fragment", kFragmentKeys, DecodeFragment, false}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

// ICMP (RFC 792) and ICMPv6 (RFC 4443). The packet quoted by an error message is nobody's traffic and is not decoded.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kFixedLength = 4;

Payload DecodeIcmp(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kFixedLength) {
    facts.MarkShort();
    return {};
  }
  // Destination unreachable, source quench, redirect, time exceeded, parameter problem.
  std::uint8_t type = bytes[0];
  facts.is_icmp_error = type == 3 || type == 4 || type == 5 || type == 11 || type == 12;
  return {};
}

Payload DecodeIcmpv6(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kFixedLength) {
    facts.MarkShort();
    return {};
  }
  facts.is_icmp_error = bytes[0] < 128;
  return {};
}

constexpr std::array kIcmpKeys{LayerKey{Layer::kIpProtocol, 1}};
constexpr std::array kIcmpv6Keys{LayerKey{Layer::kIpProtocol, 58}};
constexpr std::array kProtocols{Protocol{"ICMP", kIcmpKeys, DecodeIcmp}, Protocol{"ICMPv6", kIcmpv6Keys, DecodeIcmpv6}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

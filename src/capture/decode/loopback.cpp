// BSD loopback captures (LINKTYPE_NULL, LINKTYPE_LOOP): the address family in 32 bits, in network order for the second
// and in that of the machine that captured for the first. Families are small numbers, so that the smaller of the two
// readings is the right one.

#include <algorithm>
#include <array>

#include "capture/decode/ip_version.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 4;
constexpr std::uint32_t kFirstEtherType = 0x0600;

std::uint32_t Reversed(std::uint32_t value) {
  return (value >> 24) | ((value >> 8) & 0xFF00) | ((value << 8) & 0xFF0000) | (value << 24);
}

Payload DecodeLoopback(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  std::uint32_t family = Read32(bytes, 0);
  family = std::min(family, Reversed(family));
  bytes = bytes.subspan(kHeaderLength);
  switch (family) {
    case 2: return {kIpv4Key, bytes};
    case 10:  // Linux
    case 23:  // Windows
    case 24:  // NetBSD, OpenBSD
    case 28:  // FreeBSD
    case 30:  // Darwin
      return {kIpv6Key, bytes};
    case 7: return {{Layer::kSap, 0xFE}, bytes};
    case 16: return {{Layer::kEtherType, 0x809B}, bytes};
    default:
      // Some systems put an EtherType there.
      if (family < kFirstEtherType || family > 0xFFFF) return {};
      return {{Layer::kEtherType, family}, bytes};
  }
}

constexpr std::array kKeys{LayerKey{Layer::kLink, 0}, LayerKey{Layer::kLink, 108}};
constexpr std::array kProtocols{Protocol{"Loopback", kKeys, DecodeLoopback}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

// MPLS label stacks (RFC 3032) and what stands behind them. The labels do not say what that is: it is told by its first
// bits (RFC 4928), and by whether it makes sense as what they say.

#include <array>

#include "capture/decode/ip_version.h"

namespace orvo {
namespace {

constexpr std::size_t kEntryLength = 4;
constexpr std::size_t kControlWordLength = 4;

bool LooksLikeIpv4(Bytes bytes, bool cut_off) {
  constexpr std::size_t kShortest = 20;
  if (bytes.size() < kShortest) return cut_off;
  std::size_t header = std::size_t{bytes[0] & 0x0FU} * 4;
  std::size_t total = Read16(bytes, 2);
  return header >= kShortest && total >= header && (total <= bytes.size() || cut_off);
}

bool LooksLikeIpv6(Bytes bytes, bool cut_off) {
  constexpr std::size_t kHeader = 40;
  if (bytes.size() < kHeader) return cut_off;
  return kHeader + Read16(bytes, 4) <= bytes.size() || cut_off;
}

bool LooksLikeEthernet(Bytes bytes) {
  constexpr std::size_t kHeader = 14;
  constexpr std::uint16_t kLongestLength = 1500;
  if (bytes.size() < kHeader) return false;
  std::uint16_t field = Read16(bytes, kHeader - 2);
  if (field > kLongestLength) return ProtocolRegistry::Get().Find(Layer::kEtherType, field) != 0;
  return field >= 3 && field <= bytes.size() - kHeader;
}

Payload BehindLabels(Bytes bytes, bool cut_off) {
  if (bytes.empty()) return {};
  constexpr LayerKey kBridgedEthernet{Layer::kEtherType, 0x6558};
  unsigned bits = bytes[0] >> 4U;
  if (bits == 4 && LooksLikeIpv4(bytes, cut_off)) return {kIpv4Key, bytes};
  if (bits == 6 && LooksLikeIpv6(bytes, cut_off)) return {kIpv6Key, bytes};
  // Pseudowires may set a control word that begins with four zero bits before the frame (RFC 4385 section 3).
  if (bits == 0 && LooksLikeEthernet(Behind(bytes, kControlWordLength))) {
    return {kBridgedEthernet, bytes.subspan(kControlWordLength)};
  }
  return LooksLikeEthernet(bytes) ? Payload{kBridgedEthernet, bytes} : Payload{};
}

Payload DecodeMpls(Bytes bytes, PacketFacts& facts) {
  for (bool bottom = false; !bottom;) {
    if (bytes.size() < kEntryLength) {
      facts.MarkShort();
      return {};
    }
    bottom = (bytes[2] & 1) != 0;
    bytes = bytes.subspan(kEntryLength);
  }
  return BehindLabels(bytes, facts.cut_off || facts.is_fragment);
}

/// Unicast and multicast; over PPP (RFC 3032 section 4), IP (RFC 4023) and UDP (RFC 7510).
constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x8847}, LayerKey{Layer::kEtherType, 0x8848},
                           LayerKey{Layer::kPpp, 0x0281},       LayerKey{Layer::kPpp, 0x0283},
                           LayerKey{Layer::kIpProtocol, 137},   LayerKey{Layer::kUdpTunnel, 6635}};
constexpr std::array kProtocols{Protocol{"MPLS", kKeys, DecodeMpls}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

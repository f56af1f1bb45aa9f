// GRE: version 0 (RFC 2784, with the options of RFC 1701 and RFC 2890) and the enhanced version 1 of PPTP (RFC 2637
// section 4.1). NVGRE (RFC 7637) is version 0 with a key and Ethernet in it.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kFixedLength = 4;
constexpr std::size_t kOptionLength = 4;
constexpr std::uint16_t kChecksum = 0x8000;
constexpr std::uint16_t kRouting = 0x4000;
constexpr std::uint16_t kKey = 0x2000;
constexpr std::uint16_t kSequence = 0x1000;
constexpr std::uint16_t kAcknowledgement = 0x0080;
constexpr std::uint16_t kVersion = 0x0007;

/// Length of the header as its flags have it, without the routing entries.
std::size_t HeaderLength(std::uint16_t flags) {
  std::size_t length = kFixedLength;
  bool enhanced = (flags & kVersion) == 1;
  if ((flags & (kChecksum | kRouting)) != 0 && !enhanced) length += kOptionLength;
  if ((flags & kKey) != 0) length += kOptionLength;
  if ((flags & kSequence) != 0) length += kOptionLength;
  if ((flags & kAcknowledgement) != 0 && enhanced) length += kOptionLength;
  return length;
}

/// Passes over source routes: address family, offset, length, addresses; the last has the family and the length 0.
/// False when the bytes end before.
bool SkipRoutes(Bytes* bytes) {
  constexpr std::size_t kEntryLength = 4;
  while (bytes->size() >= kEntryLength) {
    bool last = Read16(*bytes, 0) == 0 && (*bytes)[3] == 0;
    std::size_t length = kEntryLength + (*bytes)[3];
    if (length > bytes->size()) return false;
    *bytes = bytes->subspan(length);
    if (last) return true;
  }
  return false;
}

Payload DecodeGre(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kFixedLength) {
    facts.MarkShort();
    return {};
  }
  std::uint16_t flags = Read16(bytes, 0);
  std::uint16_t type = Read16(bytes, 2);
  std::size_t length = HeaderLength(flags);
  if ((flags & kVersion) > 1) return {};
  bool enhanced = (flags & kVersion) == 1;
  if (length > bytes.size()) {
    facts.MarkShort();
    return {};
  }
  bytes = bytes.subspan(length);
  // Without a sequence number the enhanced version carries an acknowledgement and no packet.
  if (enhanced && (flags & kSequence) == 0) return {};
  if (!enhanced && (flags & kRouting) != 0 && !SkipRoutes(&bytes)) {
    facts.MarkShort();
    return {};
  }
  return {{Layer::kEtherType, type}, bytes};
}

constexpr std::array kKeys{LayerKey{Layer::kIpProtocol, 47}, LayerKey{Layer::kUdpTunnel, 4754}};
constexpr std::array kProtocols{Protocol{"GRE", kKeys, DecodeGre}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

// PPP (RFC 1661 section 2), in HDLC-like framing (RFC 1662 section 3) and without, and Cisco's HDLC.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kFramingLength = 2;

/// The protocol field has two bytes, or one, which is odd, where both sides have agreed so (RFC 1661 section 6.5).
Payload BehindFraming(Bytes bytes, PacketFacts& facts) {
  bool compressed = !bytes.empty() && (bytes[0] & 1) != 0;
  std::size_t length = compressed ? 1 : 2;
  if (bytes.size() < length) {
    facts.MarkShort();
    return {};
  }
  std::uint32_t protocol = compressed ? bytes[0] : Read16(bytes, 0);
  return {{Layer::kPpp, protocol}, bytes.subspan(length)};
}

/// Address and control are left out where both sides have agreed so (RFC 1661 section 6.6).
Payload DecodePpp(Bytes bytes, PacketFacts& facts) {
  bool framed = bytes.size() >= kFramingLength && Read16(bytes, 0) == 0xFF03;
  return BehindFraming(framed ? bytes.subspan(kFramingLength) : bytes, facts);
}

/// An address and a control byte as above, or those of Cisco's framing, behind which an EtherType follows.
Payload DecodeHdlc(Bytes bytes, PacketFacts& facts) {
  constexpr std::size_t kCiscoLength = 4;
  bool cisco = bytes.size() >= kCiscoLength && (bytes[0] == 0x0F || bytes[0] == 0x8F) && bytes[1] == 0;
  if (!cisco) return DecodePpp(bytes, facts);
  return {{Layer::kEtherType, Read16(bytes, 2)}, bytes.subspan(kCiscoLength)};
}

/// A byte that says in which direction the frame went stands before it.
Payload DecodeWithDirection(Bytes bytes, PacketFacts& facts) {
  if (bytes.empty()) {
    facts.MarkShort();
    return {};
  }
  return DecodePpp(bytes.subspan(1), facts);
}

/// The direction stands in place of the address: 0 for received, 1 for sent, then the control byte.
Payload DecodePppd(Bytes bytes, PacketFacts& facts) {
  bool framed = bytes.size() >= kFramingLength && bytes[0] <= 1 && bytes[1] == 3;
  return framed ? BehindFraming(bytes.subspan(kFramingLength), facts) : DecodePpp(bytes, facts);
}

/// PPP itself is also carried by GRE (RFC 2637 section 4.1) and by PPPoE.
constexpr std::array kPppKeys{LayerKey{Layer::kLink, 9}, LayerKey{Layer::kEtherType, 0x880B}};
constexpr std::array kHdlcKeys{LayerKey{Layer::kLink, 50}, LayerKey{Layer::kLink, 104}};
constexpr std::array kDirectionKeys{LayerKey{Layer::kLink, 204}};
constexpr std::array kPppdKeys{LayerKey{Layer::kLink, 166}};
constexpr std::array kProtocols{Protocol{"PPP", kPppKeys, DecodePpp}, Protocol{"PPP in HDLC", kHdlcKeys, DecodeHdlc},
                                Protocol{"PPP with Direction", kDirectionKeys, DecodeWithDirection},
                                Protocol{"PPP (pppd)", kPppdKeys, DecodePppd}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

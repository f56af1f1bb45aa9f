// Authentication of stations on a LAN (IEEE 802.1X clause 11): version, type, length.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 4;

/// The method of a request or a response of EAP (RFC 3748 section 4), 0 for anything else.
std::uint8_t EapMethod(Bytes eap) {
  constexpr std::size_t kMethodAt = 4;
  constexpr std::uint8_t kRequest = 1;
  constexpr std::uint8_t kResponse = 2;
  if (eap.size() <= kMethodAt || (eap[0] != kRequest && eap[0] != kResponse)) return 0;
  return eap[kMethodAt];
}

Payload DecodeEapol(Bytes bytes, PacketFacts& facts) {
  constexpr std::uint8_t kEapPacket = 0;
  if (bytes.size() < kHeaderLength || bytes.size() - kHeaderLength < Read16(bytes, 2)) facts.MarkShort();
  if (bytes.size() >= kHeaderLength && bytes[1] == kEapPacket) {
    facts.eap_method = EapMethod(Within(bytes.subspan(kHeaderLength), Read16(bytes, 2)));
  }
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x888E}, LayerKey{Layer::kEtherType, 0x88C7}};
constexpr std::array kProtocols{Protocol{"802.1X", kKeys, DecodeEapol}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

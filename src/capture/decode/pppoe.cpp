// PPP over Ethernet (RFC 2516): discovery, and sessions, which carry PPP without framing.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 6;
constexpr std::uint8_t kVersionAndType = 0x11;
constexpr std::uint8_t kSessionCode = 0;
constexpr std::uint32_t kPppEtherType = 0x880B;

Payload DecodePppoe(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  std::uint8_t code = bytes[1];
  std::size_t length = Read16(bytes, 4);
  if (bytes[0] != kVersionAndType) facts.malformed = true;
  bytes = bytes.subspan(kHeaderLength);
  if (length > bytes.size()) facts.MarkShort();
  if (code != kSessionCode) return {};
  return {{Layer::kEtherType, kPppEtherType}, Within(bytes, length)};
}

constexpr std::array kDiscoveryKeys{LayerKey{Layer::kEtherType, 0x8863}};
constexpr std::array kSessionKeys{LayerKey{Layer::kEtherType, 0x8864}, LayerKey{Layer::kLink, 51}};
constexpr std::array kProtocols{Protocol{"PPPoE Discovery", kDiscoveryKeys, DecodePppoe},
                                Protocol{"PPPoE", kSessionKeys, DecodePppoe}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

// Authentication of stations on a LAN (IEEE 802.1X clause 11): version, type, length.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 4;

Payload DecodeEapol(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength || bytes.size() - kHeaderLength < Read16(bytes, 2)) facts.MarkShort();
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x888E}, LayerKey{Layer::kEtherType, 0x88C7}};
constexpr std::array kProtocols{Protocol{"802.1X", kKeys, DecodeEapol}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

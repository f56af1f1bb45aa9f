// AppleTalk address resolution (Inside AppleTalk, chapter 2). As with ARP, the addresses in it are no ends.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kFixedLength = 8;

Payload DecodeAarp(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kFixedLength) {
    facts.MarkShort();
    return {};
  }
  std::size_t addresses = 2 * (std::size_t{bytes[4]} + bytes[5]);
  if (bytes.size() < kFixedLength + addresses) facts.MarkShort();
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kEtherType, 0x80F3}};
constexpr std::array kProtocols{Protocol{"AARP", kKeys, DecodeAarp}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

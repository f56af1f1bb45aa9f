// Address resolution of IP (RFC 826) and of AppleTalk (Inside AppleTalk, chapter 2), which have one form. The addresses
// in it are what it speaks about, not its ends: those are the frame's.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kFixedLength = 8;

Payload DecodeAddressResolution(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kFixedLength) {
    facts.MarkShort();
    return {};
  }
  std::size_t addresses = 2 * (std::size_t{bytes[4]} + bytes[5]);
  if (bytes.size() < kFixedLength + addresses) facts.MarkShort();
  return {};
}

constexpr std::array kArpKeys{LayerKey{Layer::kEtherType, 0x0806}, LayerKey{Layer::kEtherType, 0x8035}};
constexpr std::array kAarpKeys{LayerKey{Layer::kEtherType, 0x80F3}};
constexpr std::array kProtocols{
    Protocol{"ARP", kArpKeys, DecodeAddressResolution},
    Protocol{"AARP", kAarpKeys, DecodeAddressResolution},
};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

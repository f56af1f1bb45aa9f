// The authentication header (RFC 4302 section 2), which leaves what it protects readable.

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kShortest = 12;

Payload DecodeAuthentication(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kShortest) {
    facts.MarkShort();
    return {};
  }
  // In units of four bytes, less two.
  std::size_t length = (std::size_t{bytes[1]} + 2) * 4;
  if (length < kShortest) {
    facts.malformed = true;
    return {};
  }
  if (length > bytes.size()) {
    facts.MarkShort();
    return {};
  }
  facts.ip_protocol = bytes[0];
  return {{Layer::kIpProtocol, bytes[0]}, bytes.subspan(length)};
}

constexpr std::array kKeys{LayerKey{Layer::kIpProtocol, 51}};
constexpr std::array kProtocols{Protocol{"AH", kKeys, DecodeAuthentication}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

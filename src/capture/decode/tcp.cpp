// TCP (RFC 9293 section 3.1).

#include <array>

#include "capture/decode/ports.h"
#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 20;

Payload DecodeTcp(Bytes bytes, PacketFacts& facts) {
  NotePorts(bytes, facts);
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  facts.tcp_flags = bytes[13];
  std::size_t header = std::size_t{static_cast<unsigned>(bytes[12] >> 4)} * 4;
  if (header < kHeaderLength) facts.malformed = true;
  if (header > bytes.size()) facts.MarkShort();
  if (header >= kHeaderLength) facts.payload = Behind(bytes, header);
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kIpProtocol, 6}};
constexpr std::array kProtocols{Protocol{"TCP", kKeys, DecodeTcp}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

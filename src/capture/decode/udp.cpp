// UDP (RFC 768).

#include <array>

#include "capture/decode/ports.h"
#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 8;
constexpr std::uint16_t kFirstUserPort = 1024;

Payload DecodeUdp(Bytes bytes, PacketFacts& facts) {
  NotePorts(bytes, facts);
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  std::size_t length = Read16(bytes, 4);
  // 0 is a jumbogram's (RFC 2675 section 4). Fragments hold less than the length says.
  if (length != 0 && length < kHeaderLength) facts.malformed = true;
  if (length > bytes.size() && !facts.is_fragment) facts.MarkShort();
  facts.payload = Behind(length < kHeaderLength ? bytes : Within(bytes, length), kHeaderLength);
  // Servers answer from low ports to whatever port they were asked from, which need not be that of a tunnel's end.
  if (facts.source_port < kFirstUserPort) return {};
  return {{Layer::kUdpTunnel, facts.destination_port}, facts.payload};
}

constexpr std::array kKeys{LayerKey{Layer::kIpProtocol, 17}};
constexpr std::array kProtocols{Protocol{"UDP", kKeys, DecodeUdp}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

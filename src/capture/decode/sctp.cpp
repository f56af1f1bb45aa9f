// SCTP (RFC 9260 section 3) and the messages in its chunks.

#include <array>

#include "capture/decode/ports.h"
#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 12;
constexpr std::size_t kChunkHeaderLength = 4;

/// How long the header of a chunk with user data is; 0 for other chunks.
std::size_t DataHeaderLength(std::uint8_t type) {
  return type == 0 ? 16 : type == 64 ? 20 : 0;  // DATA; I-DATA (RFC 8260 section 2.1)
}

/// The user data of the first chunk that has any.
Bytes UserData(Bytes bytes, PacketFacts& facts) {
  while (bytes.size() >= kChunkHeaderLength) {
    std::size_t length = Read16(bytes, 2);
    if (length < kChunkHeaderLength) {
      facts.malformed = true;
      return {};
    }
    if (length > bytes.size() && !facts.is_fragment) facts.MarkShort();
    if (std::size_t header = DataHeaderLength(bytes[0])) return Behind(Within(bytes, length), header);
    bytes = Behind(bytes, (length + 3) & ~std::size_t{3});
  }
  return {};
}

Payload DecodeSctp(Bytes bytes, PacketFacts& facts) {
  NotePorts(bytes, facts);
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  facts.payload = UserData(bytes.subspan(kHeaderLength), facts);
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kIpProtocol, 132}};
constexpr std::array kProtocols{Protocol{"SCTP", kKeys, DecodeSctp}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

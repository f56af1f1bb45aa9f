// OSPF, version 2 (RFC 2328 appendix A.3.1) and version 3 (RFC 5340 appendix A.3.1).

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::size_t kVersion2Header = 24;
constexpr std::size_t kVersion3Header = 16;

Payload DecodeOspf(Bytes bytes, PacketFacts& facts) {
  std::size_t header = !bytes.empty() && bytes[0] == 3 ? kVersion3Header : kVersion2Header;
  if (bytes.size() < header) {
    facts.MarkShort();
    return {};
  }
  std::size_t length = Read16(bytes, 2);
  if (length < header) facts.malformed = true;
  if (length > bytes.size() && !facts.is_fragment) facts.MarkShort();
  return {};
}

constexpr std::array kKeys{LayerKey{Layer::kIpProtocol, 89}};
constexpr std::array kProtocols{Protocol{"OSPF", kKeys, DecodeOspf}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

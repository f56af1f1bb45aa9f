// Captures whose packets begin with an IP header: LINKTYPE_RAW and its older numbers, LINKTYPE_IPV4 and LINKTYPE_IPV6.

#include <array>

#include "capture/decode/ip_version.h"

namespace orvo {
namespace {

Payload DecodeRawIp(Bytes bytes, PacketFacts& facts) {
  Payload payload = ByIpVersion(bytes);
  if (bytes.empty()) facts.MarkShort();
  if (!bytes.empty() && payload.key.layer == Layer::kNone) facts.malformed = true;
  return payload;
}

constexpr std::array kKeys{LayerKey{Layer::kLink, 101}, LayerKey{Layer::kLink, 12}, LayerKey{Layer::kLink, 14},
                           LayerKey{Layer::kLink, 228}, LayerKey{Layer::kLink, 229}};
constexpr std::array kProtocols{Protocol{"Raw IP", kKeys, DecodeRawIp}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo

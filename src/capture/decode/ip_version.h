#pragma once

#include "capture/decode/protocol_registry.h"

namespace orvo {

inline constexpr LayerKey kIpv4Key{Layer::kEtherType, 0x0800};
inline constexpr LayerKey kIpv6Key{Layer::kEtherType, 0x86DD};

/// What follows a header that carries IP without saying of which version: the first four bits of IP do (RFC 791
/// section 3.1, RFC 8200 section 3). Nothing for other bits, which carriers of more than IP may allow.
inline Payload ByIpVersion(Bytes bytes) {
  unsigned version = bytes.empty() ? 0 : bytes[0] >> 4U;
  if (version == 4) return {kIpv4Key, bytes};
  if (version == 6) return {kIpv6Key, bytes};
  return {};
}

}  // namespace orvo

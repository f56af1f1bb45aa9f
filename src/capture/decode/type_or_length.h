#pragma once

#include "capture/decode/protocol_registry.h"

namespace orvo {

/// What follows the field that is an EtherType from 0x0600 on and a length up to 1500 (IEEE 802.3 clause 3.2.6).
inline Payload BehindTypeOrLength(std::uint16_t field, Bytes bytes, PacketFacts& facts) {
  constexpr std::uint16_t kFirstEtherType = 0x0600;
  constexpr std::uint16_t kLongestLength = 1500;
  if (field >= kFirstEtherType) return {{Layer::kEtherType, field}, bytes};
  if (field > kLongestLength) {
    facts.malformed = true;
    return {};
  }
  if (field > bytes.size()) facts.MarkShort();
  return {{Layer::kEthernetLength, 0}, Within(bytes, field)};
}

}  // namespace orvo

#pragma once

#include <cstdint>

#include "capture/decode/wireless_facts.h"

namespace orvo {

/// What is counted of one wireless frame besides what is counted of every packet.
struct WirelessNote {
  std::uint64_t time = 0;   ///< nanoseconds since 1601-01-01 UTC
  std::uint32_t bytes = 0;  ///< on the wire, the radio's header included
  std::uint8_t eap_method = 0;
  WirelessFacts facts;
};

}  // namespace orvo

#pragma once

#include <cstdint>

#include "engine/context.h"

namespace orvo {

/// The kind of the physical addresses of a medium.
constexpr AddressType PhysicalTypeOf(std::uint32_t medium_type, std::uint32_t medium_subtype) {
  if (medium_type == kMediumWan || medium_type == kMediumWanFrame) return kAddressWan;
  return medium_type == kMediumTokenRing && medium_subtype == kSubtypeWired ? kAddressTokenRing : kAddressPhysical;
}

}  // namespace orvo

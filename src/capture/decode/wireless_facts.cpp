#include "capture/decode/wireless_facts.h"

#include <algorithm>

namespace orvo {

bool NetworkFacts::shows_name() const {
  return has_name && std::any_of(name.begin(), name.begin() + name_length, [](std::uint8_t byte) { return byte != 0; });
}

Delivery DeliveryToPhysical(const AddressRecord& physical) {
  if ((physical.bytes[0] & 1) == 0) return Delivery::kUnicast;
  const auto* end = physical.bytes.begin() + physical.length;
  const bool all_ones = std::all_of(physical.bytes.begin(), end, [](std::uint8_t byte) { return byte == 0xFF; });
  return all_ones ? Delivery::kBroadcast : Delivery::kMulticast;
}

}  // namespace orvo

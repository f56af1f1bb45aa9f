#include "text/address_texts.h"

#include <algorithm>

namespace orvo {

void AddressTexts::Keep(const AddressRecord& record, std::string_view text) {
  if (text.size() > kLongest) return;
  if (places_.empty()) places_.resize(kPlaces);
  Place& place = places_[Index(record)];
  place.record = &record;
  place.length = static_cast<std::uint8_t>(text.size());
  std::ranges::copy(text, place.text.begin());
}

}  // namespace orvo

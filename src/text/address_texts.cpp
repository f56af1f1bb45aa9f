#include "text/address_texts.h"

#include <algorithm>
#include <bit>

namespace orvo {
namespace {

using Words = std::array<std::uint64_t, 3>;
static_assert(sizeof(Words) == sizeof(AddressRecord));

/// Records are looked for by where they lie, since those of a table lie side by side and get places of their own; what
/// is found is judged by what it holds.
std::size_t PlaceOf(const AddressRecord& record, std::size_t places) {
  return reinterpret_cast<std::uintptr_t>(&record) / sizeof(AddressRecord) % places;
}

}  // namespace

std::string_view AddressTexts::Find(const AddressRecord& record) const {
  if (places_.empty()) return {};
  const Place& place = places_[PlaceOf(record, kPlaces)];
  if (std::bit_cast<Words>(place.record) != std::bit_cast<Words>(record)) return {};
  return {place.text.data(), place.length};
}

void AddressTexts::Keep(const AddressRecord& record, std::string_view text) {
  if (text.size() > kLongest) return;
  if (places_.empty()) places_.resize(kPlaces);
  Place& place = places_[PlaceOf(record, kPlaces)];
  place.record = record;
  place.length = static_cast<std::uint8_t>(text.size());
  std::ranges::copy(text, place.text.begin());
}

}  // namespace orvo

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "engine/address.h"

namespace orvo {

/// Texts of the addresses that a report names again and again, in the code page of text files. Bounded: the texts of
/// two addresses that fall upon one place take turns, and long ones are not kept. A record is known by where it lies,
/// so that all must stay there as long as this object is used.
class AddressTexts {
 public:
  /// The text that was kept for the record; empty when there is none.
  std::string_view Find(const AddressRecord& record) const {
    if (places_.empty()) return {};
    const Place& place = places_[Index(record)];
    return place.record == &record ? std::string_view(place.text.data(), place.length) : std::string_view();
  }
  void Keep(const AddressRecord& record, std::string_view text);

 private:
  static constexpr std::size_t kLongest = 55;
  static constexpr std::size_t kPlaces = 65'536;  // 4 MB

  /// One line of the cache.
  struct alignas(64) Place {
    const AddressRecord* record = nullptr;
    std::uint8_t length = 0;
    std::array<char, kLongest> text;
  };
  static_assert(sizeof(Place) == 64);

  static std::size_t Index(const AddressRecord& record) {
    // Records lie side by side: neighbours get neighbouring places.
    return reinterpret_cast<std::uintptr_t>(&record) / sizeof(AddressRecord) % kPlaces;
  }

  std::vector<Place> places_;  // made with the first text
};

}  // namespace orvo

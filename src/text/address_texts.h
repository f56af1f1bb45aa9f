#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "engine/address.h"

namespace orvo {

/// Texts of the addresses that a report names again and again, in the code page of text files. Bounded: the texts of
/// two addresses that fall upon one place take turns, and long ones are not kept.
class AddressTexts {
 public:
  /// The text that was kept for the address; empty when there is none.
  std::string_view Find(const AddressRecord& record) const;
  void Keep(const AddressRecord& record, std::string_view text);

 private:
  static constexpr std::size_t kLongest = 39;     // that of IPv6 in full
  static constexpr std::size_t kPlaces = 65'536;  // 4 MB

  /// One line of the cache.
  struct alignas(64) Place {
    AddressRecord record;
    std::uint8_t length = 0;
    std::array<char, kLongest> text;
  };
  static_assert(sizeof(Place) == 64);

  std::vector<Place> places_;  // made with the first text
};

}  // namespace orvo

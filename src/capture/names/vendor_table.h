#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "engine/address.h"

namespace orvo {

/// Who made the interface that a physical address belongs to, from the registries of the IEEE (assignments of 24, 28
/// and 36 bits). Used from any thread.
class VendorTable {
 public:
  /// The files are read when they are first needed; those that are not there, or not readable, name nobody.
  explicit VendorTable(std::string folder) : folder_(std::move(folder)) {}

  /// Appends the vendor and the address's last three bytes, as in "AcmeNetworks_12:34:56". False for other types of
  /// address, for group and locally administered addresses, and where no vendor is known.
  bool Append(const AddressRecord& address, std::u16string* text) const;

 private:
  /// An assignment and its length, and where `names_` has the organization, as its file spells it: few of them are ever
  /// asked for, so that no more is made of them before.
  struct Vendor {
    std::uint64_t key;
    std::size_t name;
    std::size_t length;
  };

  void Load() const;
  std::string Find(std::uint64_t key) const;

  std::string folder_;
  mutable std::once_flag loaded_;
  mutable std::vector<Vendor> vendors_;  // by key, and in the order of the files
  mutable std::string names_;
};

/// A registered organization's name as one word: without blanks, marks and legal form, at most 20 ASCII characters.
/// Empty for assignments that name nobody.
std::string VendorWord(std::string_view organization);

}  // namespace orvo

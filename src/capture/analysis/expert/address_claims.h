#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "capture/tables/keyed_hash.h"
#include "engine/address.h"

namespace orvo {

/// Which physical address was last said to have an IP address.
///
/// Addresses share a fixed number of places, so that memory stays within 2 MB: one that meets another in its place
/// forgets it, and a conflict may then be missed.
class AddressClaims {
 public:
  using PhysicalAddress = std::array<std::uint8_t, 6>;

  enum class Finding : std::uint8_t {
    kNothing,
    kTakenOver,  ///< another physical address than before
    kContested,  ///< the one before the last, within kContestTime of that: two claim it by turns
  };

  static constexpr std::uint64_t kContestTime = 60'000'000'000;

  Finding Note(const AddressRecord& address, const PhysicalAddress& claimant, std::uint64_t time);

 private:
  struct Claim {
    AddressRecord address;
    PhysicalAddress owner{};
    PhysicalAddress earlier_owner{};
    std::uint64_t changed = 0;  ///< time of the last change of the owner
  };
  static constexpr std::size_t kPlaces = 32768;

  KeyedHash hash_;
  std::vector<Claim> claims_;  // empty until the first claim, then kPlaces
};

}  // namespace orvo

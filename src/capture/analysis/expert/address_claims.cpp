#include "capture/analysis/expert/address_claims.h"

namespace orvo {

AddressClaims::Finding AddressClaims::Note(const AddressRecord& address, const PhysicalAddress& claimant,
                                           std::uint64_t time) {
  if (claims_.empty()) claims_.resize(kPlaces);
  Claim& claim = claims_[hash_(address) % kPlaces];
  if (claim.address != address) {
    claim = {address, claimant, claimant, time};
    return Finding::kNothing;
  }
  if (claim.owner == claimant) return Finding::kNothing;
  bool contested = claim.earlier_owner == claimant && time - claim.changed <= kContestTime;
  claim.earlier_owner = claim.owner;
  claim.owner = claimant;
  claim.changed = time;
  return contested ? Finding::kContested : Finding::kTakenOver;
}

}  // namespace orvo

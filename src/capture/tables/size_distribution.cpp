#include "capture/tables/size_distribution.h"

#include <numeric>

namespace orvo {
namespace {

// The last length of each bucket but the last.
constexpr std::array<std::uint64_t, 5> kEthernetBounds{64, 255, 511, 1023, 1517};
constexpr std::array<std::uint64_t, 10> kJumboBounds{64, 255, 511, 1023, 1518, 2047, 4095, 8191, 9017, 9022};
constexpr std::array<std::uint64_t, 6> kWirelessBounds{63, 255, 511, 1023, 2047, 2346};
constexpr std::uint64_t kLongestUsualFrame = 1518;

std::span<const std::uint64_t> BoundsOf(SizeScheme scheme) {
  switch (scheme) {
    case kSizesJumbo: return kJumboBounds;
    case kSizesWireless: return kWirelessBounds;
    default: return kEthernetBounds;
  }
}

}  // namespace

std::uint64_t PacketsBetween(const SizeCounts& counts, std::uint64_t above, std::uint64_t up_to) {
  const std::size_t first = above == 0 ? 0 : SizeBucket(above + 1);
  return std::accumulate(counts.begin() + static_cast<std::ptrdiff_t>(first),
                         counts.begin() + static_cast<std::ptrdiff_t>(SizeBucket(up_to)) + 1, std::uint64_t{0});
}

SizeScheme ChooseSizeScheme(const SizeCounts& counts) {
  return PacketsBetween(counts, kLongestUsualFrame, UINT64_MAX) != 0 ? kSizesJumbo : kSizesEthernet;
}

std::vector<std::uint64_t> SizeBuckets(const SizeCounts& counts, SizeScheme scheme) {
  const std::span<const std::uint64_t> bounds = BoundsOf(scheme);
  std::vector<std::uint64_t> buckets;
  std::uint64_t above = 0;
  for (std::uint64_t bound : bounds) {
    buckets.push_back(PacketsBetween(counts, above, bound));
    above = bound;
  }
  buckets.push_back(PacketsBetween(counts, above, UINT64_MAX));
  return buckets;
}

}  // namespace orvo

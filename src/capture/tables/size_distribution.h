#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/traffic.h"

namespace orvo {

/// Frames are counted in the finest buckets that any scheme asks for; each ends with one of these lengths, the last
/// bucket takes everything longer. The scheme is chosen when the counts are looked at.
inline constexpr std::array<std::uint64_t, 14> kSizeBounds{63,   64,   127,  255,  511,  1023, 1517,
                                                           1518, 2047, 2346, 4095, 8191, 9017, 9022};
using SizeCounts = std::array<std::uint64_t, kSizeBounds.size() + 1>;

constexpr std::size_t SizeBucket(std::uint64_t length) {
  std::size_t bucket = 0;
  while (bucket < kSizeBounds.size() && length > kSizeBounds[bucket]) ++bucket;
  return bucket;
}

/// Packets whose length lies above one bound and up to another; bounds are among kSizeBounds, `above` may be 0.
std::uint64_t PacketsBetween(const SizeCounts& counts, std::uint64_t above, std::uint64_t up_to);

/// The scheme for a wired capture: jumbo as soon as one frame was longer than 1518 bytes, Ethernet otherwise.
SizeScheme ChooseSizeScheme(const SizeCounts& counts);

/// The buckets of kSizesEthernet, kSizesJumbo or kSizesWireless. None names one for 128 to 255 bytes; frames of those
/// lengths are counted in the bucket below, so that every packet is in one.
std::vector<std::uint64_t> SizeBuckets(const SizeCounts& counts, SizeScheme scheme);

}  // namespace orvo

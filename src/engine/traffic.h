#pragma once

#include <cstdint>

#include "platform/unknown.h"

namespace orvo {

/// Traffic over time in samples of equal length, oldest first.
class ITrafficHistory : public IUnknown {
 public:
  static constexpr Guid kIid = "51433340-354C-408F-8785-D57D527C90CC"_guid;

  /// Bytes per second of each sample: an array owned by this object.
  virtual Status GetSamples(const double** values, std::uint32_t* count) = 0;
  /// Length of a sample in seconds: 1, 5, 10, 30, 60, 120, 300, 600, 3600, 21600 or 86400.
  virtual Status GetInterval(std::uint32_t* seconds) = 0;
  /// Begin of the first sample, nanoseconds since 1601-01-01 UTC.
  virtual Status GetStartTime(std::uint64_t* time) = 0;

 protected:
  ~ITrafficHistory() = default;
};

/// Which frame sizes the buckets of the size distribution stand for. No scheme has a bucket for 128 to 255 bytes: those
/// frames stand in the bucket below.
enum SizeScheme : std::uint32_t {
  kSizesEthernet = 1,   ///< to 64, 65-127, 256-511, 512-1023, 1024-1517, from 1518
  kSizesTokenRing = 2,  ///< 18-63, 64-127, ..., from 18000
  kSizesWireless = 3,   ///< below 64, 64-127, ..., 1024-2047, 2048-2346, from 2347
  kSizesJumbo = 4,      ///< to 64, 65-127, ..., 1024-1518, ..., 9018-9022, from 9023
  kSizesOther = 5,      ///< as kSizesEthernet
};

class ISizeStats : public IUnknown {
 public:
  static constexpr Guid kIid = "BC6A1991-0FF0-4D57-9B1C-4361D13CB842"_guid;

  virtual Status GetScheme(std::uint32_t* scheme) = 0;
  /// Packets per bucket: an array owned by this object.
  virtual Status GetBuckets(const std::uint64_t** packets, std::uint32_t* count) = 0;

 protected:
  ~ISizeStats() = default;
};

}  // namespace orvo

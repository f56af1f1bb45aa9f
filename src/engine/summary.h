#pragma once

#include <cstdint>
#include <string>

#include "platform/unknown.h"

namespace orvo {

/// What the two numbers of a summary value mean.
enum SummaryKind : std::uint32_t {
  kSummaryNone = 0,
  kSummaryDate = 1,             ///< first: nanoseconds since 1601-01-01 UTC
  kSummaryTime = 2,             ///< the same
  kSummaryDuration = 3,         ///< first: nanoseconds
  kSummaryPackets = 4,          ///< first: packets
  kSummaryBytes = 5,            ///< first: bytes
  kSummaryPacketsAndBytes = 6,  ///< first: packets, second: bytes
  kSummaryInteger = 7,          ///< first
  kSummaryReal = 8,             ///< first: the bits of an IEEE double
};

struct SummaryValue {
  std::uint32_t kind = kSummaryNone;
  std::uint64_t first = 0;
  std::uint64_t second = 0;
};

/// One state of all summary statistics. Statistics and groups are named by identifiers; every operation that takes one
/// answers S_FALSE (with an empty result) for an identifier that this snapshot does not hold.
class ISummarySnapshot : public IUnknown {
 public:
  static constexpr Guid kIid = "CA1D1DED-5332-4B92-BDEA-BA106051CBE0"_guid;

  /// Replaces `name` by the snapshot's own name ("Current" for the present state).
  virtual Status GetSnapshotName(std::u16string* name) = 0;
  virtual Status GetCount(std::uint32_t* count) = 0;
  virtual Status GetIdentifier(std::uint32_t index, Guid* identifier) = 0;
  virtual Status GetValue(const Guid& identifier, SummaryValue* value) = 0;
  /// Replaces `name` by the display name of a statistic or group, empty when the engine has none for it.
  virtual Status GetName(const Guid& identifier, std::u16string* name) = 0;
  /// The group of a statistic.
  virtual Status GetParent(const Guid& identifier, Guid* group) = 0;

 protected:
  ~ISummarySnapshot() = default;
};

class ISummaryStats : public IUnknown {
 public:
  static constexpr Guid kIid = "12950055-E09F-49D1-89DA-155BA300A7E9"_guid;

  /// Number of snapshots: the present state (index 0) and those stored since, oldest first.
  virtual Status GetSnapshotCount(std::uint32_t* count) = 0;
  virtual Status GetSnapshot(std::uint32_t index, ISummarySnapshot** snapshot) = 0;

 protected:
  ~ISummaryStats() = default;
};

/// Statistics that every engine keeps.
inline constexpr Guid kStatTotalPackets =
    "B1B1BA51-5BA6-42D7-B822-F2E5D845D0F9"_guid;  ///< kSummaryPackets or kSummaryPacketsAndBytes
inline constexpr Guid kStatTotalBytes = "183275C2-05C3-406B-BEE5-43BB4F80C634"_guid;  ///< kSummaryBytes
inline constexpr Guid kStatDuration = "AF088275-E3A6-4986-8AC6-44F879D46EC9"_guid;    ///< kSummaryDuration
inline constexpr Guid kStatStartDate = "93608C44-7E37-4C57-A737-0DB5756A84AF"_guid;   ///< kSummaryDate
inline constexpr Guid kStatStartTime = "9AF5B383-1C23-465C-9DEF-CB37C3D3B753"_guid;   ///< kSummaryTime
/// Stands in the group that comes first.
inline constexpr Guid kStatFirstGroup = "49163DA6-8975-4899-BD1F-F87E65287DA7"_guid;

}  // namespace orvo

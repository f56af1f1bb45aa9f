#pragma once

#include <cstddef>
#include <cstdint>

#include "capture/tables/paged_vector.h"
#include "capture/tables/row_index.h"
#include "engine/wireless.h"

namespace orvo {

/// One rate of a list, and the row of the next.
struct RateRow {
  WirelessRate rate;
  std::uint32_t next = kNoRow;
};

/// The traffic by rate of many nodes and channels: short lists in one table.
class RateLists {
 public:
  explicit RateLists(std::size_t limit) : limit_(limit) {}

  /// Counts a packet at a rate into the list that begins at `*first` (kNoRow for an empty one); false when the rate is
  /// new and the list is as long as one may be.
  bool Count(std::uint32_t* first, std::uint32_t rate, std::uint64_t bytes);

  FrozenTable<RateRow> Freeze() { return rows_.Freeze(); }

 private:
  PagedVector<RateRow> rows_;
  std::size_t limit_;
};

}  // namespace orvo

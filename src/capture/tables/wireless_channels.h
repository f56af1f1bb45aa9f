#pragma once

#include <cstddef>
#include <cstdint>

#include "capture/tables/paged_vector.h"
#include "capture/tables/rate_lists.h"
#include "capture/tables/wireless_note.h"
#include "engine/wireless.h"

namespace orvo {

struct WirelessChannelRow {
  WirelessChannelEntry entry;
  std::uint32_t first_rate = kNoRow;
  std::uint16_t modes = 0;  ///< set of RadioMode
  bool has_signal = false;
  bool has_noise = false;
};

/// The channels of one moment, in order of first appearance.
struct FrozenWirelessChannels {
  FrozenTable<WirelessChannelRow> rows;
  FrozenTable<RateRow> rates;
};

/// The traffic of every radio channel. Frames whose radio did not name a channel count for channel 0.
class WirelessChannelTable {
 public:
  WirelessChannelTable(std::size_t limit, std::size_t rates) : rates_(rates), limit_(limit) {}

  /// Counts a frame; false when its channel, or its rate, is new and there is no room for it.
  bool Count(const WirelessNote& note);

  FrozenWirelessChannels Freeze() { return {rows_.Freeze(), rates_.Freeze()}; }

 private:
  std::uint32_t RowOf(const RadioFacts& radio);

  PagedVector<WirelessChannelRow> rows_;
  RateLists rates_;
  std::uint32_t latest_ = 0;
  std::size_t limit_;
};

}  // namespace orvo

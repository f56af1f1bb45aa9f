#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/wireless.h"
#include "util/typed_array_ex.h"

namespace orvo {

/// The data rates that have columns of their own in a wireless table, in the order of the columns.
class DataRates {
 public:
  /// Rates in units of 500 kbit/s, each once.
  explicit DataRates(std::span<const std::uint32_t> rates);

  const TArrayEx<std::uint32_t>& rates() const { return rates_; }

  /// The traffic at every rate of the list, in its order: that of the first record of the rate, 0 where there is none.
  /// Records of other rates are passed over. Valid until the next call.
  std::span<const FrameCount> Match(std::span<const WirelessRate> records);

 private:
  TArrayEx<std::uint32_t> rates_;
  std::vector<FrameCount> traffic_;
};

}  // namespace orvo

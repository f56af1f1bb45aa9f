#include "statistics/data_rates.h"

#include <algorithm>

namespace orvo {

DataRates::DataRates(std::span<const std::uint32_t> rates) {
  for (std::uint32_t rate : rates) rates_.Add(rate);
  traffic_.resize(rates.size());
}

std::span<const FrameCount> DataRates::Match(std::span<const WirelessRate> records) {
  std::ranges::fill(traffic_, FrameCount());
  // Backwards, so that the first record of a rate is the one that stays.
  for (auto record = records.rbegin(); record != records.rend(); ++record) {
    const std::int32_t column = rates_.Find(record->rate);
    if (column != CArrayEx::kNone) traffic_[static_cast<std::size_t>(column)] = {record->packets, record->bytes};
  }
  return traffic_;
}

}  // namespace orvo

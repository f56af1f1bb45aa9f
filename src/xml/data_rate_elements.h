#pragma once

#include <optional>
#include <span>

#include "engine/wireless.h"
#include "statistics/data_rates.h"
#include "xml/xml_report.h"

namespace orvo {

/// The "DataRate" elements at the end of a wireless row: one of packets and one of bytes for every rate of the medium,
/// as switched on.
class DataRateElements {
 public:
  /// Reads the switches, and the medium's rates from the context. Raises a failing read.
  DataRateElements(const XmlReport& report, IStatsContext& statistics);

  /// False when no rates are asked for, so that nobody need read them.
  bool is_on() const { return rates_.has_value(); }
  void AddTo(std::span<const WirelessRate> records, XmlWriter row);

 private:
  std::optional<DataRates> rates_;
  bool packets_ = false;
  bool bytes_ = false;
};

}  // namespace orvo

#pragma once

#include <optional>
#include <span>

#include "statistics/data_rates.h"
#include "text/text_report.h"

namespace orvo {

/// The columns of a wireless file that show the traffic at each data rate of the medium, when they are switched on:
/// packets, then bytes, rate by rate.
class RateColumns {
 public:
  /// Reads the switches, and the medium of the report's statistics; raises a failing query.
  explicit RateColumns(const TextReport& report);

  /// False when rates are switched off, and nothing need be asked about them.
  bool is_on() const { return rates_.has_value(); }
  /// Appends the titles, each behind a separator.
  void AppendTitles(const TextReport& report, TextBuffer* out) const;
  /// Appends the traffic of these records, each figure behind a separator.
  void AppendValues(const TextReport& report, std::span<const WirelessRate> records, TextBuffer* out);

 private:
  std::optional<DataRates> rates_;
  bool packets_ = false;
  bool bytes_ = false;
};

}  // namespace orvo

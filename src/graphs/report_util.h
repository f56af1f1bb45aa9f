#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/address.h"
#include "engine/context.h"
#include "util/timestamp_formatter.h"

namespace orvo {

/// How a data rate's title is worded.
enum class RateTitleKind { kPackets = 1, kBytes = 2, kRate = 3 };

/// Words addresses, times and data rates for every output method; each method owns one for its whole life.
class ReportUtil {
 public:
  /// Raises the status with which the address name service could not be created.
  ReportUtil();
  virtual ~ReportUtil() = default;
  ReportUtil(const ReportUtil&) = delete;
  ReportUtil& operator=(const ReportUtil&) = delete;

  /// Replaces `text` by the address, behind its kind's label when asked for; empty for an empty record. Raises the name
  /// service's failure.
  void FormatAddress(const AddressRecord& record, bool with_kind, std::u16string* text);

  /// Replaces `text` by the local short date, a blank, and the local 24-hour time of a time value (nanoseconds since
  /// 1601-01-01 UTC). Raises the failure of a conversion.
  void FormatTimestamp(std::uint64_t time, std::u16string* text);

  /// The data rates of a medium in units of 500 kbit/s: rates of 802.11 (IEEE 802.11-2020, clauses 15 to 18) for medium
  /// type 0, none for any other type.
  static std::vector<std::uint32_t> DataRateList(std::uint32_t medium_type, std::uint32_t medium_subtype);
  /// "5.5 Mbits/s Packets" for a rate of 11 and kPackets.
  static std::u16string RateTitle(std::uint32_t rate, RateTitleKind kind);

  /// True when the context has no site, or one that does not show that a capture is running behind it.
  static bool LacksSite(IUnknown* live);

 private:
  ComPtr<IAddressNameService> names_;
  TimestampFormatter timestamps_;
};

}  // namespace orvo

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/address.h"
#include "engine/context.h"
#include "engine/graphs.h"
#include "engine/traffic.h"
#include "platform/graphics.h"
#include "util/timestamp_formatter.h"

namespace orvo {

/// How a data rate's title is worded.
enum class RateTitleKind { kPackets = 1, kBytes = 2, kRate = 3 };

/// Words addresses, times and data rates for every output method, and draws its charts; each method owns one for its
/// whole life, so that fonts are looked up for the first of its charts only.
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

  // The charts. Each draws one PNG file of that many pixels, replacing what has that name, and gives the renderer's
  // status. A null object is E_POINTER, a null file name E_INVALIDARG. A failing call of the engine ends the chart with
  // its status; no file is written then.

  /// Megabits per second over the newest stretch of a length that suits the history's interval.
  Status TrafficHistoryChart(ITrafficHistory* history, const char16_t* file, std::int32_t width, std::int32_t height);
  /// The nine addresses with the most bytes, and the others together: IP addresses, or physical ones when the capture
  /// has no IP.
  Status TopTalkersChart(IStatsContext* context, const char16_t* file, std::int32_t width, std::int32_t height);
  /// How many packets there are of which size.
  Status SizeDistributionChart(ISizeStats* sizes, const char16_t* file, std::int32_t width, std::int32_t height);
  /// A graph of the engine's, in at most 300 points. With `lacks_site` it shows all samples that the graph has from the
  /// first on; without, those of the last `span` seconds before the report, which are an hour at least. `report_time`
  /// is in nanoseconds since 1601-01-01 UTC.
  Status EngineGraphChart(IGraph* graph, std::uint64_t span, std::uint64_t report_time, bool lacks_site,
                          const char16_t* file, std::int32_t width, std::int32_t height);

 private:
  GraphicsStartup graphics_;
  ComPtr<IAddressNameService> names_;
  TimestampFormatter timestamps_;
};

}  // namespace orvo

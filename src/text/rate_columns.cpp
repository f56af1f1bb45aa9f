#include "text/rate_columns.h"

#include "platform/error.h"
#include "prefs/switch_ids.h"

namespace orvo {

RateColumns::RateColumns(const TextReport& report) {
  if (!report.IsOn(kSwitchOutputDataRates)) return;
  packets_ = report.IsOn(kSwitchDataRatesPackets);
  bytes_ = report.IsOn(kSwitchDataRatesBytes);
  std::uint32_t medium_type = 0;
  std::uint32_t medium_subtype = 0;
  Check(report.job.statistics->GetMediumType(&medium_type));
  Check(report.job.statistics->GetMediumSubtype(&medium_subtype));
  rates_.emplace(ReportUtil::DataRateList(medium_type, medium_subtype));
}

void RateColumns::AppendTitles(const TextReport& report, TextBuffer* out) const {
  if (!rates_) return;
  for (std::int32_t i = 0; i < rates_->rates().count(); ++i) {
    const std::uint32_t rate = rates_->rates()[i];
    if (packets_) {
      out->Append(report.separator);
      out->AppendWide(ReportUtil::RateTitle(rate, RateTitleKind::kPackets));
    }
    if (bytes_) {
      out->Append(report.separator);
      out->AppendWide(ReportUtil::RateTitle(rate, RateTitleKind::kBytes));
    }
  }
}

void RateColumns::AppendValues(const TextReport& report, std::span<const WirelessRate> records, TextBuffer* out) {
  if (!rates_) return;
  for (const FrameCount& traffic : rates_->Match(records)) {
    if (packets_) {
      out->Append(report.separator);
      out->AppendInteger(traffic.packets);
    }
    if (bytes_) {
      out->Append(report.separator);
      out->AppendInteger(traffic.bytes);
    }
  }
}

}  // namespace orvo

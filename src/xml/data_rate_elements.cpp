#include "xml/data_rate_elements.h"

#include "platform/error.h"
#include "prefs/switch_ids.h"

namespace orvo {
namespace {

void AddRate(std::uint32_t rate, RateTitleKind kind, std::uint64_t value, XmlWriter row) {
  const XmlWriter element = row.AddElement("DataRate");
  element.SetAttribute("Name", ReportUtil::RateTitle(rate, kind));
  element.SetAttribute("Value", NumberText(value));
}

}  // namespace

DataRateElements::DataRateElements(const XmlReport& report, IStatsContext& statistics) {
  if (!report.IsOn(kSwitchOutputDataRates)) return;
  packets_ = report.IsOn(kSwitchDataRatesPackets);
  bytes_ = report.IsOn(kSwitchDataRatesBytes);
  std::uint32_t medium_type = 0;
  std::uint32_t medium_subtype = 0;
  Check(statistics.GetMediumType(&medium_type));
  Check(statistics.GetMediumSubtype(&medium_subtype));
  rates_.emplace(ReportUtil::DataRateList(medium_type, medium_subtype));
}

void DataRateElements::AddTo(std::span<const WirelessRate> records, XmlWriter row) {
  if (!rates_) return;
  std::int32_t index = 0;
  for (const FrameCount& traffic : rates_->Match(records)) {
    const std::uint32_t rate = rates_->rates()[index++];
    if (packets_) AddRate(rate, RateTitleKind::kPackets, traffic.packets, row);
    if (bytes_) AddRate(rate, RateTitleKind::kBytes, traffic.bytes, row);
  }
}

}  // namespace orvo

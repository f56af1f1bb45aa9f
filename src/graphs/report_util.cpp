#include "graphs/report_util.h"

#include <span>

#include "platform/class_factory.h"
#include "platform/error.h"
#include "util/ascii.h"
#include "util/string_table.h"

namespace orvo {
namespace {

constexpr std::uint32_t kRates80211a[] = {12, 18, 24, 36, 48, 72, 96, 108, 144, 192, 216};
constexpr std::uint32_t kRates80211bg[] = {2, 4, 11, 12, 18, 22, 24, 36, 44, 48, 66, 72, 96, 108, 144, 192, 216};
constexpr std::uint32_t kRates80211b[] = {2, 4, 11, 22};

std::span<const std::uint32_t> RatesOf(std::uint32_t medium_subtype) {
  switch (medium_subtype) {
    case kSubtype80211a: return kRates80211a;
    case kSubtype80211bg: return kRates80211bg;
    default: return kRates80211b;
  }
}

}  // namespace

ReportUtil::ReportUtil() {
  Check(CreateInstance(kAddressNameServiceClass, &names_));
}

void ReportUtil::FormatAddress(const AddressRecord& record, bool with_kind, std::u16string* text) {
  text->clear();
  if (record.valid == 0 || record.type == kAddressNone) return;
  if (with_kind) Check(names_->AppendTypeLabel(record.type, text));
  Check(names_->AppendAddressText(record, text));
}

void ReportUtil::FormatTimestamp(std::uint64_t time, std::u16string* text) {
  text->clear();
  Check(timestamps_.Append(time, text));
}

std::vector<std::uint32_t> ReportUtil::DataRateList(std::uint32_t medium_type, std::uint32_t medium_subtype) {
  if (medium_type != kMediumEthernet) return {};
  std::span<const std::uint32_t> rates = RatesOf(medium_subtype);
  return {rates.begin(), rates.end()};
}

std::u16string ReportUtil::RateTitle(std::uint32_t rate, RateTitleKind kind) {
  std::u16string number = WidenAscii(std::to_string(rate / 2));
  if (rate % 2 != 0) number += u".5";

  StringId id = kStrRate;
  if (kind == RateTitleKind::kPackets) id = kStrRatePackets;
  if (kind == RateTitleKind::kBytes) id = kStrRateBytes;
  std::u16string title(TextOf(id));
  title.replace(title.find(u"%s"), 2, number);
  return title;
}

bool ReportUtil::LacksSite(IUnknown* live) {
  ComPtr<IObjectWithSite> with_site;
  if (Failed(Query(live, &with_site)) || !with_site) return true;
  ComPtr<IEngineSite> site;
  return Failed(with_site->GetSite(IEngineSite::kIid, site.OutVoid())) || !site;
}

}  // namespace orvo

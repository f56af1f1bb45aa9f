#include <array>
#include <span>
#include <string_view>

#include "graphs/chart_builder.h"
#include "graphs/report_util.h"
#include "platform/error.h"
#include "util/string_table.h"

namespace orvo {
namespace {

using Labels = std::span<const std::u16string_view>;

constexpr std::array<std::u16string_view, 6> kEthernetLabels{u"<= 64",    u"65-127",    u"256-511",
                                                             u"512-1023", u"1024-1517", u">= 1518"};
constexpr std::array<std::u16string_view, 9> kTokenRingLabels{
    u"18-63", u"64-127", u"256-511", u"512-1023", u"1024-2047", u"2048-4095", u"4096-8191", u"8192-17999", u">= 18000"};
constexpr std::array<std::u16string_view, 7> kWirelessLabels{u"< 64",      u"64-127",    u"256-511", u"512-1023",
                                                             u"1024-2047", u"2048-2346", u">= 2347"};
constexpr std::array<std::u16string_view, 11> kJumboLabels{u"<= 64",     u"65-127",    u"256-511",   u"512-1023",
                                                           u"1024-1518", u"1519-2047", u"2048-4095", u"4096-8191",
                                                           u"8192-9017", u"9018-9022", u">= 9023"};
constexpr std::array<std::u16string_view, 2> kUnknownLabels{u"256-511", u"512-1023"};

Labels LabelsOf(std::uint32_t scheme) {
  switch (scheme) {
    case kSizesEthernet:
    case kSizesOther: return kEthernetLabels;
    case kSizesTokenRing: return kTokenRingLabels;
    case kSizesWireless: return kWirelessLabels;
    case kSizesJumbo: return kJumboLabels;
    default: return kUnknownLabels;
  }
}

}  // namespace

Status ReportUtil::SizeDistributionChart(ISizeStats* sizes, const char16_t* file, std::int32_t width,
                                         std::int32_t height) {
  if (!sizes) return E_POINTER;
  return Guard([&] {
    std::uint32_t scheme = 0;
    const std::uint64_t* packets = nullptr;
    std::uint32_t count = 0;
    Check(sizes->GetScheme(&scheme));
    Check(sizes->GetBuckets(&packets, &count));
    if (count != 0 && !packets) Raise(E_POINTER);

    ChartBuilder chart(kChartNamedPie);
    chart.data.SetPointCount(1);
    chart.tool.SetTitle(TextOf(kStrSizeDistribution));
    chart.tool.SetShowLegend(true);
    chart.tool.ComputeRange();
    const Labels labels = LabelsOf(scheme);
    for (std::uint32_t bucket = 0; bucket < labels.size(); ++bucket) {
      chart.data.EnsureSeries(bucket, labels[bucket]);
      chart.data.SetValue(bucket, 0, bucket < count ? static_cast<double>(packets[bucket]) : 0);
    }
    return chart.Render(file, width, height);
  });
}

}  // namespace orvo

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <string>

#include "graphs/chart_builder.h"
#include "graphs/report_util.h"
#include "platform/error.h"
#include "util/date_time.h"
#include "util/formatting.h"
#include "util/string_table.h"

namespace orvo {
namespace {

constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
/// From samples of this length on, labels carry the date too.
constexpr std::uint32_t kLeastIntervalWithDate = 600;

/// A stretch of time that the chart can show, with a point for each average of so many seconds.
struct Window {
  std::uint32_t span;  ///< seconds, 0 for as long as it takes
  std::uint32_t average;
  StringId title;
};

constexpr std::array kWindows{
    Window{120, 1, kStrWindow2Minutes},      Window{600, 5, kStrWindow10Minutes}, Window{1800, 10, kStrWindow30Minutes},
    Window{3600, 30, kStrWindow1Hour},       Window{7200, 60, kStrWindow2Hours},  Window{21600, 120, kStrWindow6Hours},
    Window{43200, 300, kStrWindow12Hours},   Window{86400, 600, kStrWindowDay},   Window{604800, 3600, kStrWindowWeek},
    Window{2678400, 21600, kStrWindowMonth}, Window{0, 86400, kStrWindowYear},
};

const Window& WindowFor(std::uint32_t interval) {
  const auto* found = std::ranges::find_if(kWindows, [&](const Window& row) { return row.average >= interval; });
  return found == kWindows.end() ? kWindows.back() : *found;
}

std::u16string LabelOf(std::uint64_t time, std::uint32_t interval) {
  std::u16string text;
  Check(interval >= kLeastIntervalWithDate ? FormatTimestamp(time, &text) : FormatTimeOfDay(time, kNoFraction, &text));
  return text;
}

std::u16string TitleOf(const Window& window) {
  std::u16string title(TextOf(kStrTrafficHistory));
  return title.replace(title.find(u"%s"), 2, TextOf(window.title));
}

}  // namespace

Status ReportUtil::TrafficHistoryChart(ITrafficHistory* history, const char16_t* file, std::int32_t width,
                                       std::int32_t height) {
  if (!history) return E_POINTER;
  return Guard([&] {
    const double* rates = nullptr;
    std::uint32_t count = 0;
    std::uint32_t interval = 0;
    std::uint64_t start = 0;
    Check(history->GetSamples(&rates, &count));
    Check(history->GetInterval(&interval));
    Check(history->GetStartTime(&start));
    if (count != 0 && !rates) Raise(E_POINTER);

    const Window& window = WindowFor(interval);
    ChartBuilder chart(kChartOverTime);
    chart.data.SetPointCount(window.span == 0 ? count : window.span / window.average);
    chart.data.EnsureSeries(0, {});
    chart.tool.pointLabelsOn = 1;
    chart.tool.SetTitle(TitleOf(window));
    chart.tool.SetValueAxisTitle(TextOf(kStrMbitsPerSecond));
    chart.tool.ComputeRange();
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::uint32_t slot = chart.data.AdvanceCursor();
      const std::uint64_t time = start + i * kNanosecondsPerSecond * interval;
      // A slot that is written again loses the label of the sample that it held.
      chart.data.SetPointLabel(slot, i % kPointsPerLabel == 0 ? LabelOf(time, interval) : std::u16string());
      chart.data.SetValue(0, slot, rates[i] * 8 / 1'000'000);
    }
    return chart.Render(file, width, height);
  });
}

}  // namespace orvo

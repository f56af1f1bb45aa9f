#include <algorithm>
#include <string>
#include <vector>

#include "graphs/chart_builder.h"
#include "graphs/report_util.h"
#include "platform/error.h"

namespace orvo {
namespace {

constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::uint64_t kShortestSpan = 3600;
constexpr std::uint32_t kMostPoints = 300;

/// Which samples of a graph are shown, and how many of them one point stands for.
struct Selection {
  std::uint64_t start = 0;  ///< nanoseconds since 1601-01-01 UTC
  std::uint32_t points = 0;
  std::uint32_t samples_per_point = 1;
};

Selection SelectAll(std::uint32_t samples) {
  Selection all{.points = samples};
  if (samples >= kMostPoints) {
    all.points = kMostPoints;
    all.samples_per_point = samples / kMostPoints;
  }
  return all;
}

Selection SelectLast(std::uint64_t span, std::uint64_t report_time, std::uint32_t interval, std::uint32_t samples) {
  span = std::max(span, kShortestSpan);
  const std::uint64_t shown = span / std::max<std::uint32_t>(interval, 1);
  Selection last = SelectAll(static_cast<std::uint32_t>(std::min<std::uint64_t>(shown, samples)));
  const std::uint64_t seconds_before = report_time / kNanosecondsPerSecond;
  last.start = span > seconds_before ? 0 : report_time - span * kNanosecondsPerSecond;
  return last;
}

/// Fills one series with the points that the graph has in the selection. They become the last points of the chart, and
/// the cursor goes all the way round, so that the next series meets the same slots.
class SeriesFiller {
 public:
  SeriesFiller(ReportUtil* util, CZxGraphDataStorage* data, const Selection& selection)
      : util_(*util), data_(*data), selection_(selection), values_(selection.points), times_(selection.points) {}

  void Fill(IGraphSeries* source, std::uint32_t series) {
    std::uint32_t count = selection_.points;
    Check(source->GetSamples(series, selection_.start, selection_.samples_per_point, &count, values_.data(),
                             times_.data()));
    count = std::min(count, selection_.points);
    for (std::uint32_t i = count; i < selection_.points; ++i) data_.AdvanceCursor();
    std::u16string label;
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::uint32_t slot = data_.AdvanceCursor();
      data_.SetValue(series, slot, values_[i]);
      if (series != 0 || i % kPointsPerLabel != 0) continue;
      util_.FormatTimestamp(times_[i], &label);
      data_.SetPointLabel(slot, label);
    }
  }

 private:
  ReportUtil& util_;
  CZxGraphDataStorage& data_;
  const Selection selection_;
  std::vector<double> values_;
  std::vector<std::uint64_t> times_;
};

}  // namespace

Status ReportUtil::EngineGraphChart(IGraph* graph, std::uint64_t span, std::uint64_t report_time, bool lacks_site,
                                    const char16_t* file, std::int32_t width, std::int32_t height) {
  if (!graph) return E_POINTER;
  return Guard([&] {
    std::uint32_t samples = 0;
    std::uint32_t interval = 0;
    std::uint32_t series_count = 0;
    ComPtr<IGraphSeries> source;
    std::u16string name;
    Check(graph->GetSampleCount(&samples));
    Check(graph->GetInterval(&interval));
    Check(graph->GetSeries(source.Out()));
    if (!source) Raise(E_FAIL);
    Check(source->GetCount(&series_count));
    const Selection selection = lacks_site ? SelectAll(samples) : SelectLast(span, report_time, interval, samples);

    ChartBuilder chart(kChartOverTime);
    chart.data.SetPointCount(selection.points);
    Check(graph->GetName(&name));
    chart.tool.SetCaption(name);
    chart.tool.SetValueAxisTitle(u"Values");
    chart.tool.pointLabelsOn = 1;
    chart.tool.SetShowLegend(true);
    for (std::uint32_t series = 0; series < series_count; ++series) {
      Check(source->GetName(series, &name));
      chart.data.EnsureSeries(series, name);
      chart.data.ResetSeries(series, 0.0);
    }
    chart.tool.ComputeRange();
    SeriesFiller filler(this, &chart.data, selection);
    for (std::uint32_t series = 0; series < series_count; ++series) filler.Fill(source.get(), series);
    return chart.Render(file, width, height);
  });
}

}  // namespace orvo

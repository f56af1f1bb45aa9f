#include "graphs/line_chart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "graphs/chart_style.h"
#include "graphs/legend.h"
#include "graphs/point_labels.h"
#include "graphs/value_axis.h"
#include "util/ascii.h"

namespace orvo {
namespace {

/// Parts of the area that legend and value labels take at most.
constexpr double kMostLegend = 0.36;
constexpr double kMostLabels = 0.38;
/// A value that has no neighbours is a dot.
constexpr double kDotWidth = 4;

/// A number for which the locale's form has no room.
std::u16string ShortNumber(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4g", value);
  return WidenAscii(text);
}

/// Points from left to right, to be joined. Of many that fall into one column of pixels the first, the lowest and the
/// highest, and the last are kept, which look the same: joining hundreds of thousands takes minutes.
class Trace {
 public:
  void Add(PointF point) {
    if (points_.empty() || std::floor(point.x) != std::floor(points_[column_].x)) column_ = points_.size();
    if (points_.size() - column_ < kMostInColumn) {
      points_.push_back(point);
      return;
    }
    PointF* later = &points_[column_ + 1];
    const auto [low, high] = std::minmax({later[0].y, later[1].y, later[2].y, point.y});
    later[0].y = low;
    later[1].y = high;
    later[2] = point;
  }
  void Clear() { points_.clear(); }
  const std::vector<PointF>& points() const { return points_; }

 private:
  static constexpr std::size_t kMostInColumn = 4;

  std::vector<PointF> points_;
  std::size_t column_ = 0;  ///< where the latest column begins
};

class LineChart {
 public:
  LineChart(const ChartOptions& options, bool point_labels_on, const RectF& area)
      : options_(options),
        data_(*options.storage),
        area_(area),
        points_(data_.Dimensions().second),
        axis_(ValueAxis::For(options.minimum, options.maximum)),
        legend_(data_),
        point_labels_(data_, points_, point_labels_on),
        label_font_(MeasureFont(kLabelFont)),
        title_font_(MeasureFont(kAxisTitleFont)) {}

  void Draw(Canvas* canvas) {
    Measure();
    if (!(plot_.width > 0 && plot_.height > 0)) return;
    DrawPlot(canvas);
    DrawAxis(canvas);
    for (std::uint32_t series = 0; series < data_.SeriesCount(); ++series) DrawSeries(canvas, series);
    point_labels_.Draw(canvas, plot_, Spacing(), area_.x, area_.right());
    if (legend_box_.rows != 0) {
      const double x = plot_.x + (plot_.width - legend_box_.width) / 2;
      const double left = std::min(std::max(x, area_.x), area_.right() - legend_box_.width);
      legend_.Draw(canvas, {std::floor(left), std::floor(area_.bottom() - legend_box_.height)}, legend_box_);
    }
  }

 private:
  /// Finds the plot by taking from the area what the other parts need.
  void Measure() {
    double bottom = area_.bottom();
    if (options_.show_legend && !legend_.empty()) {
      legend_box_ = legend_.Flat(area_.width, area_.height * kMostLegend);
      if (legend_box_.rows != 0) bottom -= legend_box_.height + kGap;
    }
    bottom -= point_labels_.height();
    // The topmost label reaches half its height above the plot.
    const double top = area_.y + std::ceil(label_font_.height() / 2);
    MeasureTicks(bottom - top);
    double left = area_.x + label_width_ + kGap;
    if (!options_.value_axis_title.empty()) left += std::ceil(title_font_.height()) + kGap;
    if (point_labels_.height() == 0) bottom -= std::ceil(label_font_.height() / 2);
    plot_ = {std::floor(left), std::floor(top), std::floor(area_.right() - left - kGap), std::floor(bottom - top)};
  }

  void MeasureTicks(double height) {
    const double distance = height / axis_.intervals;
    stride_ = 1;
    while (stride_ < axis_.intervals && stride_ * distance < label_font_.height() + 1) ++stride_;
    const std::uint32_t first = axis_.ZeroTick() % stride_;
    for (bool brief : {false, true}) {
      ticks_.clear();
      label_width_ = 0;
      for (std::uint32_t tick = first; tick <= axis_.intervals; tick += stride_) {
        ticks_.push_back({tick, TextLine(brief ? ShortNumber(axis_.Tick(tick)) : axis_.Label(tick), kLabelFont)});
        label_width_ = std::max(label_width_, std::ceil(ticks_.back().label.width()));
      }
      if (label_width_ <= area_.width * kMostLabels) break;
    }
  }

  double HeightOf(double value) const {
    return plot_.bottom() - std::clamp(axis_.Place(value), 0.0, 1.0) * plot_.height;
  }
  static double Sharp(double position) { return std::floor(position) + 0.5; }

  void DrawPlot(Canvas* canvas) const {
    if (options_.plot_background.on) canvas->FillRectangle(plot_, options_.plot_background.colour);
    if (options_.grid.on) {
      const Argb colour = options_.grid.colour == 0 ? kPlainGridColour : options_.grid.colour;
      for (const Tick& tick : ticks_) {
        const double y = Sharp(HeightOf(axis_.Tick(tick.number)));
        canvas->DrawLine({plot_.x + 0.5, y}, {plot_.right() - 0.5, y}, {colour, 1});
      }
    }
    if (options_.frame.on) {
      canvas->DrawRectangle({plot_.x + 0.5, plot_.y + 0.5, plot_.width, plot_.height}, {options_.frame.colour, 1});
    }
    const Pen pen{kAxisColour, 1};
    const double zero = Sharp(HeightOf(0));
    canvas->DrawLine({plot_.x + 0.5, zero}, {plot_.right() - 0.5, zero}, pen);
  }

  void DrawAxis(Canvas* canvas) const {
    const double right = plot_.x - kGap;
    const double middle = (label_font_.ascent - label_font_.descent) / 2;
    for (const Tick& tick : ticks_) {
      const double y = Sharp(HeightOf(axis_.Tick(tick.number)));
      canvas->DrawText(tick.label, {right - tick.label.width(), y + middle}, kTextColour);
    }
    if (options_.value_axis_title.empty()) return;
    const TextLine title(options_.value_axis_title, kAxisTitleFont, plot_.height + point_labels_.height());
    const double base = std::min(plot_.centre().y + title.width() / 2, area_.bottom());
    canvas->DrawTextUpwards(title, {area_.x + title_font_.ascent, std::max(base, area_.y + title.width())},
                            kTextColour);
  }

  double Spacing() const { return points_ < 2 ? plot_.width : plot_.width / (points_ - 1); }

  /// The stretches of points that have values, each a line of its own.
  void DrawSeries(Canvas* canvas, std::uint32_t series) const {
    Trace trace;
    const Argb colour = data_.SeriesColour(series);
    auto finish = [&] {
      const std::vector<PointF>& line = trace.points();
      if (!line.empty()) canvas->DrawLines(line, {colour, line.size() == 1 ? kDotWidth : kSeriesLineWidth});
      trace.Clear();
    };
    for (std::uint32_t point = 0; point < data_.SeriesValueCount(series); ++point) {
      const double value = data_.GetValue(series, point);
      if (!IsPresent(value)) {
        finish();
        continue;
      }
      trace.Add({plot_.x + point * Spacing(), HeightOf(value)});
    }
    finish();
  }

  struct Tick {
    std::uint32_t number = 0;
    TextLine label;
  };

  const ChartOptions& options_;
  const CZxGraphDataStorage& data_;
  const RectF area_;
  const std::uint32_t points_;
  const ValueAxis axis_;
  const Legend legend_;
  const PointLabels point_labels_;
  const FontMetrics label_font_;
  const FontMetrics title_font_;
  Legend::Arrangement legend_box_;
  std::uint32_t stride_ = 1;
  std::vector<Tick> ticks_;
  double label_width_ = 0;
  RectF plot_;
};

}  // namespace

void DrawLineChart(Canvas* canvas, const ChartOptions& options, bool point_labels_on, const RectF& area) {
  LineChart(options, point_labels_on, area).Draw(canvas);
}

}  // namespace orvo

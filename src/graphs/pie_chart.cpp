#include "graphs/pie_chart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include "graphs/chart_style.h"
#include "graphs/legend.h"
#include "graphs/pie_labels.h"
#include "util/ascii.h"

namespace orvo {
namespace {

constexpr double kWholeTurn = 2 * std::numbers::pi;
constexpr double kTop = -kWholeTurn / 4;
/// At either side of a pie with names there is room for this text and a third of its width.
constexpr std::u16string_view kRoomSample = u"999.9%%";
/// A smaller pie goes without labels.
constexpr double kLeastRadius = 24;
/// Parts of the area that the legend takes at most.
constexpr double kMostLegendWidth = 0.45;
constexpr double kMostLegendHeight = 0.4;
/// A label takes at most this part of the width, unless that is too little for a label of usual length.
constexpr double kMostLabelWidth = 0.2;
constexpr double kUsualLabelWidth = 100;
constexpr double kMostUsualLabelWidth = 0.33;
constexpr double kLabelGap = 7;

/// A colour as on paper: three quarters of the brightness, and opaque.
Argb Darker(Argb colour) {
  auto part = [&](int shift) { return (colour >> shift & 0xFF) * 3 / 4 << shift; };
  return 0xFF000000 | part(16) | part(8) | part(0);
}

std::u16string Percentage(const char* format, double share) {
  char text[16];
  std::snprintf(text, sizeof text, format, share * 100);
  return WidenAscii(text);
}

/// The name of a slice, if it is shown, and its share behind it. They are two texts, so that a name that reads
/// leftwards does not take the share along.
struct SliceLabel {
  std::vector<TextLine> parts;
  double width = 0;

  void Add(TextLine part) {
    width += part.width();
    parts.push_back(std::move(part));
  }
};

class PieChart {
 public:
  PieChart(const ChartOptions& options, ChartKind kind, const RectF& area)
      : options_(options), data_(*options.storage), area_(area), slices_(SlicesOf(data_)), legend_(data_) {
    shape_.gap = kLabelGap;
    shape_.line_height = std::ceil(font_.height());
    for (const PieSlice& slice : slices_) AddLabel(kind, slice);
    if (kind == kChartNamedPie) room_ = TextLine(kRoomSample, kLabelFont).width() * 4 / 3;
    for (const SliceLabel& label : labels_) room_ = std::max(room_, label.width + kLabelGap + kSmallGap);
  }

  void Draw(Canvas* canvas) {
    Arrange();
    if (!(plot_.width > 0 && plot_.height > 0)) return;
    if (options_.plot_background.on) canvas->FillRectangle(plot_, options_.plot_background.colour);
    if (options_.frame.on) canvas->DrawRectangle(plot_, {options_.frame.colour, 1});
    DrawSlices(canvas);
    if (labelled_) DrawLabels(canvas);
    if (legend_box_.rows != 0) legend_.Draw(canvas, legend_corner_, legend_box_);
  }

 private:
  void AddLabel(ChartKind kind, const PieSlice& slice) {
    SliceLabel label;
    const bool named = kind == kChartNamedPie;
    TextLine share(Percentage(named ? " %3.1f%%" : "%3.1f%%", slice.share), kLabelFont);
    const double usual = std::min(kUsualLabelWidth, area_.width * kMostUsualLabelWidth);
    const double most = std::max(area_.width * kMostLabelWidth, usual) - share.width();
    if (named) label.Add(TextLine(data_.SeriesName(slice.series), kLabelFont, most));
    label.Add(std::move(share));
    labels_.push_back(std::move(label));
  }

  /// The largest radius that leaves room for the labels at both sides. Those near the top and the bottom stand aside of
  /// the circle too.
  double RadiusIn(const RectF& r) const { return std::min(r.width / 2 - room_, r.height / 2 - shape_.line_height / 2); }

  void Arrange() {
    plot_ = area_;
    if (options_.show_legend && !legend_.empty()) PlaceLegend();
    shape_.centre = {std::round(plot_.centre().x), std::round(plot_.centre().y)};
    shape_.top = plot_.y;
    shape_.bottom = plot_.bottom();
    shape_.radius = std::floor(RadiusIn(plot_));
    labelled_ = shape_.radius >= kLeastRadius;
    if (!labelled_) shape_.radius = std::floor(std::max(std::min(plot_.width, plot_.height) / 2 - kSmallGap, 0.0));
  }

  void PlaceLegend() {
    const auto flat = legend_.Flat(area_.width, area_.height * kMostLegendHeight);
    const auto tall = legend_.Tall(area_.width * kMostLegendWidth, area_.height);
    RectF above = area_, beside = area_;
    above.height -= flat.height + kGap;
    beside.width -= tall.width + kGap;
    const bool is_flat = tall.rows == 0 || (flat.rows != 0 && RadiusIn(above) > RadiusIn(beside));
    legend_box_ = is_flat ? flat : tall;
    if (legend_box_.rows == 0) return;
    plot_ = is_flat ? above : beside;
    legend_corner_ = is_flat ? PointF{area_.x + (area_.width - flat.width) / 2, area_.bottom() - flat.height}
                             : PointF{area_.right() - tall.width, area_.y + (area_.height - tall.height) / 2};
    legend_corner_ = {std::floor(legend_corner_.x), std::floor(legend_corner_.y)};
  }

  RectF Circle() const {
    return {shape_.centre.x - shape_.radius, shape_.centre.y - shape_.radius, 2 * shape_.radius, 2 * shape_.radius};
  }

  void DrawSlices(Canvas* canvas) const {
    if (slices_.empty()) canvas->DrawEllipse(Circle(), {kAxisColour, 1});
    for (const PieSlice& slice : slices_) {
      canvas->FillPie(Circle(), slice.start, slice.sweep, data_.SeriesColour(slice.series));
    }
    for (const PieSlice& slice : slices_) {
      canvas->DrawPie(Circle(), slice.start, slice.sweep, {Darker(data_.SeriesColour(slice.series)), 1});
    }
  }

  void DrawLabels(Canvas* canvas) const {
    std::vector<PieLabelWish> wishes;
    for (const PieSlice& slice : slices_) wishes.push_back({slice.middle(), slice.share});
    const double middle = (font_.ascent - font_.descent) / 2;
    for (const PieLabelPlace& place : PlacePieLabels(wishes, shape_)) {
      const SliceLabel& label = labels_[place.label];
      if (place.moved) {
        const PointF end{place.x + (place.on_right ? -2.5 : 2.5), place.y};
        const std::vector<PointF> line = LeaderLine(shape_, slices_[place.label].middle(), end);
        canvas->DrawLines(line, {kAxisColour, 0.75});
      }
      double x = place.on_right ? place.x : place.x - label.width;
      for (const TextLine& part : label.parts) {
        canvas->DrawText(part, {x, place.y + middle}, kTextColour);
        x += part.width();
      }
    }
  }

  const ChartOptions& options_;
  const CZxGraphDataStorage& data_;
  const RectF area_;
  const std::vector<PieSlice> slices_;
  const Legend legend_;
  const FontMetrics font_ = MeasureFont(kLabelFont);
  std::vector<SliceLabel> labels_;  ///< one for each slice
  double room_ = 0;                 ///< at either side of the pie
  bool labelled_ = false;
  RectF plot_;
  PieShape shape_;
  Legend::Arrangement legend_box_;
  PointF legend_corner_;
};

}  // namespace

std::vector<PieSlice> SlicesOf(const CZxGraphDataStorage& storage) {
  std::vector<PieSlice> slices;
  double sum = 0;
  for (std::uint32_t series = 0; series < storage.SeriesCount(); ++series) {
    const double value = storage.HasSeries(series) ? storage.GetValue(series, 0) : 0;
    if (!IsPresent(value) || !(value > 0)) continue;
    slices.push_back({.series = series, .share = value});
    sum += value;
  }
  double start = kTop;
  for (PieSlice& slice : slices) {
    slice.share /= sum;
    slice.start = start;
    slice.sweep = slice.share * kWholeTurn;
    start += slice.sweep;
  }
  return slices;
}

void DrawPieChart(Canvas* canvas, const ChartOptions& options, ChartKind kind, const RectF& area) {
  PieChart(options, kind, area).Draw(canvas);
}

}  // namespace orvo

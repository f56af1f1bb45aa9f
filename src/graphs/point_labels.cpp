#include "graphs/point_labels.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "graphs/chart_style.h"

namespace orvo {
namespace {

/// Labels stand at points that are at least so many pixels apart.
constexpr double kLeastDistance = 20;
constexpr double kLeastTextGap = 8;
constexpr double kTickLength = 4;

/// Date and time, cut at the last blank.
std::pair<std::u16string_view, std::u16string_view> SplitLabel(std::u16string_view label) {
  const std::size_t blank = label.rfind(u' ');
  if (blank == std::u16string_view::npos) return {label, {}};
  return {label.substr(0, blank), label.substr(blank + 1)};
}

}  // namespace

PointLabels::PointLabels(const CZxGraphDataStorage& storage, std::uint32_t points, bool on)
    : storage_(storage), font_(MeasureFont(kLabelFont)) {
  for (std::uint32_t point = 0; on && point < points; ++point) {
    const std::u16string& label = storage.GetPointLabel(point);
    if (label.empty()) continue;
    points_.push_back(point);
    lines_ = std::max<std::size_t>(lines_, SplitLabel(label).second.empty() ? 1 : 2);
  }
}

double PointLabels::height() const {
  return points_.empty() ? 0 : kTickLength + kSmallGap + static_cast<double>(lines_) * std::ceil(font_.height());
}

std::vector<std::uint32_t> PointLabels::SpacedPoints(double spacing) const {
  const auto least = static_cast<std::uint32_t>(std::ceil(kLeastDistance / std::max(spacing, 1e-6)));
  std::vector<std::uint32_t> spaced;
  for (std::uint32_t point : points_) {
    if (spaced.empty() || point - spaced.back() >= least) spaced.push_back(point);
  }
  return spaced;
}

std::vector<PointLabels::Label> PointLabels::MeasureLabels(const RectF& plot, double spacing) const {
  std::vector<Label> labels;
  for (std::uint32_t point : SpacedPoints(spacing)) {
    Label label;
    label.x = plot.x + point * spacing;
    auto [first, second] = SplitLabel(storage_.GetPointLabel(point));
    for (std::u16string_view text : {first, second}) {
      if (text.empty()) continue;
      label.lines.emplace_back(text, kLabelFont, plot.width);
      label.width = std::max(label.width, label.lines.back().width());
    }
    labels.push_back(std::move(label));
  }
  return labels;
}

void PointLabels::Draw(Canvas* canvas, const RectF& plot, double spacing, double left, double right) const {
  std::vector<Label> labels = MeasureLabels(plot, spacing);
  auto begin_of = [&](const Label& label) {
    return std::max(std::min(label.x - label.width / 2, right - label.width), left);
  };
  auto clear = [&](std::size_t stride) {
    for (std::size_t i = 0; i + stride < labels.size(); i += stride) {
      if (begin_of(labels[i]) + labels[i].width + kLeastTextGap > begin_of(labels[i + stride])) return false;
    }
    return true;
  };
  std::size_t stride = 1;
  while (!clear(stride)) ++stride;

  for (std::size_t i = 0; i < labels.size(); i += stride) {
    const Label& label = labels[i];
    const double x = std::floor(label.x) + 0.5;
    canvas->DrawLine({x, plot.bottom()}, {x, plot.bottom() + kTickLength}, {kAxisColour, 1});
    double base = plot.bottom() + kTickLength + kSmallGap + font_.ascent;
    for (const TextLine& line : label.lines) {
      canvas->DrawText(line, {begin_of(label) + (label.width - line.width()) / 2, base}, kTextColour);
      base += std::ceil(font_.height());
    }
  }
}

}  // namespace orvo

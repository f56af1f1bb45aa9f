#include "graphs/gdiplus_graph_tool.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "graphs/chart_style.h"
#include "graphs/line_chart.h"
#include "graphs/pie_chart.h"
#include "platform/bitmap.h"
#include "platform/canvas.h"
#include "platform/error.h"

namespace orvo {
namespace {

// The chart's place in the picture: this far from the left and the top, and so much smaller than the picture.
constexpr double kLeft = 10;
constexpr double kTop = 10;
constexpr double kNarrower = 20;
constexpr double kLower = 11;
/// Kept free at the lower end of that place.
constexpr double kBottomPadding = 5;

/// Numbers beyond it have no place on an axis: the sum of two must be a number.
constexpr double kGreatestValue = 1e300;

/// A line for which there is no room is written in smaller letters, down to this size, before it is cut.
constexpr double kSmallestTitle = 8;

TextLine FitTitle(std::u16string_view text, Font font, double room) {
  TextLine line(text, font, room);
  if (!line.elided()) return line;
  font.points = std::max(std::floor(font.points * 2 * room / TextLine(text, font).width()) / 2, kSmallestTitle);
  return {text, font, room};
}

/// One or two lines, centred at the top of the picture. There is room for a line of the title's font, whatever the
/// title is, so that all charts of a size have their plots at one height.
class TitleBlock {
 public:
  TitleBlock(const ChartOptions& options, bool is_pie, const RectF& area) : area_(area) {
    Add(options.title, kTitleFont);
    Add(is_pie ? PieCaption(options) : options.caption, kAxisTitleFont);
    height_ = std::ceil(MeasureFont(kTitleFont).height());
    if (lines_.size() > 1) height_ += std::ceil(MeasureFont(kAxisTitleFont).height());
  }

  double height() const { return height_; }

  void Draw(Canvas* canvas) const {
    double y = area_.y;
    for (const Line& line : lines_) {
      const PointF base{area_.x + (area_.width - line.text.width()) / 2, y + line.font.ascent};
      canvas->DrawText(line.text, base, kTextColour);
      y += std::ceil(line.font.height());
    }
  }

 private:
  struct Line {
    TextLine text;
    FontMetrics font;
  };

  static std::u16string PieCaption(const ChartOptions& options) {
    if (options.caption.empty() || options.value_axis_title.empty()) return options.caption + options.value_axis_title;
    return options.caption + u" - " + options.value_axis_title;
  }

  void Add(std::u16string_view text, const Font& font) {
    if (text.empty() || !(area_.width > 0)) return;
    lines_.push_back({FitTitle(text, font, area_.width), MeasureFont(font)});
  }

  RectF area_;
  std::vector<Line> lines_;
  double height_ = 0;
};

}  // namespace

bool IsPresent(double value) {
  return std::abs(value) <= kGreatestValue;
}

void CZxGDIPlusGraphTool::SetFixedRange(bool on, double value) {
  options_.has_fixed_range = on;
  options_.fixed_range = value;
  if (!on || !IsPresent(value)) return;
  options_.maximum = std::max(value, 0.0);
  options_.minimum = std::min(value, 0.0);
}

void CZxGDIPlusGraphTool::ComputeRange() {
  if (!options_.storage || options_.has_fixed_range) return;
  const CZxGraphDataStorage& data = *options_.storage;
  options_.maximum = 0;
  options_.minimum = 0;
  double greatest_sum = 0;
  double all = 0;
  for (std::uint32_t series = 0; series < data.SeriesCount(); ++series) {
    double sum = 0;
    for (std::uint32_t point = 0; point < data.SeriesValueCount(series); ++point) {
      const double value = data.GetValue(series, point);
      if (!IsPresent(value)) continue;
      sum += value;
      options_.maximum = std::max(options_.maximum, value);
      options_.minimum = std::min(options_.minimum, value);
    }
    greatest_sum = std::max(greatest_sum, sum);
    all += sum;
  }
  if (chartKind != kChartSharePie) return;
  options_.maximum = all > 0 ? greatest_sum * 100 / all : 0;
  options_.minimum = 0;
}

Status CZxGDIPlusGraphTool::RenderToFile(const char16_t* format, const char16_t* path, std::int32_t width,
                                         std::int32_t height) const {
  if (!format || !path) return E_INVALIDARG;
  return Guard([&] {
    Bitmap bitmap;
    Check(Bitmap::Create(width, height, options_.image_background, &bitmap));
    Canvas canvas(&bitmap);
    const bool is_pie = chartKind == kChartNamedPie || chartKind == kChartSharePie;
    const RectF area{kLeft, kTop, width - kNarrower, height - kLower};
    const TitleBlock title(options_, is_pie, area);
    const double above = title.height() + kGap;
    const RectF chart{area.x, area.y + above, area.width, area.height - above - kBottomPadding};
    const CZxGraphDataStorage no_data;
    ChartOptions options = options_;
    if (!options.storage) options.storage = &no_data;
    if (is_pie) DrawPieChart(&canvas, options, static_cast<ChartKind>(chartKind), chart);
    if (chartKind == kChartOverTime) DrawLineChart(&canvas, options, pointLabelsOn != 0, chart);
    title.Draw(&canvas);
    Check(bitmap.Save(std::u16string(u"image/") + format, path));
  });
}

}  // namespace orvo

#pragma once

#include <cstdint>
#include <string_view>

#include "graphs/chart_options.h"
#include "platform/status.h"

namespace orvo {

/// Turns the numbers of a storage into the picture of a chart. One is made for each chart, told what to show, and asked
/// for the file.
class CZxGDIPlusGraphTool {
 public:
  CZxGDIPlusGraphTool() = default;
  virtual ~CZxGDIPlusGraphTool() = default;
  CZxGDIPlusGraphTool(const CZxGDIPlusGraphTool&) = delete;
  CZxGDIPlusGraphTool& operator=(const CZxGDIPlusGraphTool&) = delete;

  /// One of ChartKind; any other draws the title alone.
  std::int32_t chartKind = 0;
  /// Whether the points' labels are written below a chart over time.
  std::int32_t pointLabelsOn = 0;

  void SetTitle(std::u16string_view text) { options_.title = text; }
  /// A second line below the title, or in its place when there is none.
  void SetCaption(std::u16string_view text) { options_.caption = text; }
  /// Stands along the axis of values; in the caption of a pie, which has no axis.
  void SetValueAxisTitle(std::u16string_view text) { options_.value_axis_title = text; }
  void SetShowLegend(bool show) { options_.show_legend = show; }
  void SetPlotBackground(bool on, Argb colour) { options_.plot_background = {on, colour}; }
  void SetFrame(bool on, Argb colour) { options_.frame = {on, colour}; }
  /// A grid without a colour (0) is drawn in a light grey.
  void SetGrid(bool on, Argb colour) { options_.grid = {on, colour}; }
  /// The axis goes from zero to that value, whatever the data.
  void SetFixedRange(bool on, double value);
  /// The storage must outlive this object's use of it; null for a chart without data.
  void AttachStorage(const CZxGraphDataStorage* storage) { options_.storage = storage; }

  /// Finds the range of values, from the data and zero. Does nothing without a storage and for a fixed range.
  void ComputeRange();
  double maximum() const { return options_.maximum; }
  double minimum() const { return options_.minimum; }

  /// Draws the chart into a new picture of that many pixels and puts it into a file in the format of the MIME type
  /// "image/" + `format`. E_INVALIDARG for a null text; E_FAIL for a size that no Bitmap can have and for a format
  /// without encoder; else the status of writing. Nothing is left of a file that was not written in full.
  Status RenderToFile(const char16_t* format, const char16_t* path, std::int32_t width, std::int32_t height) const;

 private:
  ChartOptions options_;
};

}  // namespace orvo

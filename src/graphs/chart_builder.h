#pragma once

#include <cstdint>

#include "graphs/gdiplus_graph_tool.h"
#include "graphs/graph_data_storage.h"

namespace orvo {

/// What the builders of the report's charts have in common: each labels every tenth of its points.
inline constexpr std::uint32_t kPointsPerLabel = 10;

inline constexpr Argb kReportPlotBackground = 0xFFEEF6FF;
inline constexpr Argb kReportFrame = 0xFFFFFFFF;

/// The numbers of a chart and the renderer that they are attached to. The plot has neither fill nor frame.
struct ChartBuilder {
  explicit ChartBuilder(ChartKind kind) {
    tool.chartKind = kind;
    tool.SetPlotBackground(false, kReportPlotBackground);
    tool.SetFrame(false, kReportFrame);
    tool.SetGrid(true, 0);
    tool.SetFixedRange(false, 0);
    tool.AttachStorage(&data);
  }

  Status Render(const char16_t* file, std::int32_t width, std::int32_t height) {
    tool.ComputeRange();
    return tool.RenderToFile(u"png", file, width, height);
  }

  CZxGraphDataStorage data;
  CZxGDIPlusGraphTool tool;
};

}  // namespace orvo

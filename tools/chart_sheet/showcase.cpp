#include "tools/chart_sheet/showcase.h"

#include <fmt/core.h>

#include <cmath>
#include <limits>
#include <span>

#include "graphs/gdiplus_graph_tool.h"
#include "graphs/graph_data_storage.h"
#include "platform/code_page.h"
#include "platform/graphics.h"

namespace orvo::tools {
namespace {

constexpr std::uint32_t kPoints = 120;

/// Curves that differ enough to be told apart.
double Wave(std::uint32_t series, std::uint32_t point) {
  const double phase = point * (0.05 + 0.01 * series) + series;
  return 5 + 0.7 * series + 3 * std::sin(phase) + std::sin(3.1 * phase);
}

struct LineCase {
  const char* name;
  const char16_t* title;
  std::vector<std::u16string> series;
  double factor = 1;
  double shift = 0;
  bool dates = false;
  bool gaps = false;
  std::uint32_t points = kPoints;
};

std::vector<std::u16string> Names(std::initializer_list<const char16_t*> names) {
  return {names.begin(), names.end()};
}

std::vector<std::u16string> ManyNames(int count) {
  std::vector<std::u16string> names;
  for (int i = 1; i <= count; ++i) names.push_back(FromUtf8(fmt::format("Protocol {}", i)));
  return names;
}

std::vector<LineCase> LineCases() {
  return {
      {.name = "line-empty", .title = u"No Data at All", .series = {}, .points = 0},
      {.name = "line-one", .title = u"One Series", .series = Names({u"TCP"})},
      {.name = "line-dates", .title = u"Labels with Dates", .series = Names({u"TCP", u"UDP"}), .dates = true},
      {.name = "line-twelve", .title = u"Twelve Series", .series = ManyNames(12), .dates = true},
      {.name = "line-sixty", .title = u"Sixty Series", .series = ManyNames(60), .points = 40},
      {.name = "line-zeros", .title = u"Nothing but Zeros", .series = Names({u"Errors"}), .factor = 0},
      {.name = "line-negative", .title = u"On Both Sides of Zero", .series = Names({u"In", u"Out"}), .shift = -6},
      {.name = "line-below-zero", .title = u"Below Zero", .series = Names({u"Noise (dBm)"}), .shift = -90},
      {.name = "line-tiny", .title = u"Millionths", .series = Names({u"Share"}), .factor = 1e-7},
      {.name = "line-huge", .title = u"Billions and More", .series = Names({u"Bits"}), .factor = 1e11, .dates = true},
      {.name = "line-absurd", .title = u"More Than Has Room", .series = Names({u"Bits"}), .factor = 1e200},
      {.name = "line-gaps", .title = u"Gaps and Single Points", .series = Names({u"Seen"}), .gaps = true},
      {.name = "line-single", .title = u"A Single Point", .series = Names({u"TCP"}), .points = 1},
      {.name = "line-names",
       .title =
           u"A title that is so long that no picture has room for all of it, whatever its width may be, at any time",
       .series = Names({u"a-host-with-a-very-long-name.department.branch.example.com", u"日本語のプロトコル名",
                        u"בדיקת רשת ארוכה מאוד (TCP)", u"سلام 123", u"Übergrößenträger", u""})},
  };
}

void DrawLine(const LineCase& line, Pictures* pictures) {
  CZxGraphDataStorage data;
  data.SetPointCount(line.points);
  for (std::uint32_t series = 0; series < line.series.size(); ++series) {
    data.EnsureSeries(series, line.series[series]);
    for (std::uint32_t point = 0; point < line.points; ++point) {
      const std::uint32_t slot = data.AdvanceCursor();
      const bool gap = line.gaps && (point % 30 > 20 || point % 7 == 3);
      const double value = gap ? CZxGraphDataStorage::kMissing : (Wave(series, point) + line.shift) * line.factor;
      data.SetValue(series, slot, line.gaps && point == 50 ? std::numeric_limits<double>::quiet_NaN() : value);
      if (series != 0 || point % 10 != 0) continue;
      data.SetPointLabel(
          slot, FromUtf8(fmt::format("{}14:{:02}:{:02}", line.dates ? "11/23/2026 " : "", point / 60, point % 60)));
    }
  }
  CZxGDIPlusGraphTool tool;
  tool.chartKind = kChartOverTime;
  tool.pointLabelsOn = 1;
  tool.SetTitle(line.title);
  tool.SetValueAxisTitle(u"Values");
  tool.SetShowLegend(true);
  tool.SetPlotBackground(false, 0);
  tool.SetFrame(false, 0);
  tool.AttachStorage(&data);
  tool.ComputeRange();
  pictures->Add(line.name, [&](auto... place) { return tool.RenderToFile(u"png", place...); });
}

struct PieCase {
  const char* name;
  const char16_t* title;
  ChartKind kind;
  std::vector<std::u16string> names;
  std::vector<double> values;
};

std::vector<PieCase> PieCases() {
  const auto sizes = Names({u"<= 64", u"65-127", u"256-511", u"512-1023", u"1024-1518", u"1519-2047", u"2048-4095",
                            u"4096-8191", u"8192-9017", u"9018-9022", u">= 9023"});
  const auto hosts = Names({u"192.168.100.101", u"192.168.100.102", u"printer.example.com", u"10.0.0.1", u"10.0.0.2",
                            u"10.0.0.3", u"10.0.0.4", u"255.255.255.255", u"224.0.0.251", u"Others"});
  const auto long_names = Names({u"a-host-with-a-very-long-name.department.branch.example.com", u"日本語のホスト名",
                                 u"שרת ארוך מאוד של החברה", u"خادم", u"x", u""});
  return {
      {"pie-empty", u"No Data at All", kChartNamedPie, sizes, std::vector<double>(11, 0)},
      {"pie-one", u"One Slice", kChartNamedPie, Names({u"65-127"}), {5}},
      {"pie-sizes", u"Sizes", kChartNamedPie, sizes, {512, 230, 80, 95, 640, 12, 40, 33, 70, 5, 21}},
      {"pie-thin", u"Many Thin Slices", kChartNamedPie, sizes, {9000, 20, 15, 12, 9, 8, 7, 5, 4, 2, 1}},
      {"pie-thin-first", u"Thin Slices First", kChartNamedPie, sizes, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 2000}},
      {"pie-even", u"Even Slices", kChartNamedPie, sizes, std::vector<double>(11, 1)},
      {"pie-hosts", u"Top Talkers by IP Address", kChartSharePie, hosts, {812, 410, 300, 120, 90, 60, 44, 23, 12, 150}},
      {"pie-hosts-thin",
       u"Top Talkers by IP Address",
       kChartSharePie,
       hosts,
       {9000, 70, 60, 50, 40, 30, 20, 10, 5, 90}},
      {"pie-names", u"Long Names and Other Scripts", kChartNamedPie, long_names, {5, 4, 3, 2, 2, 1}},
      {"pie-names-share", u"Long Names and Other Scripts", kChartSharePie, long_names, {5, 4, 3, 2, 2, 1}},
  };
}

void DrawPie(const PieCase& pie, Pictures* pictures) {
  CZxGraphDataStorage data;
  data.SetPointCount(1);
  for (std::uint32_t series = 0; series < pie.names.size(); ++series) {
    data.EnsureSeries(series, pie.names[series]);
    data.SetValue(series, 0, pie.values[series]);
  }
  CZxGDIPlusGraphTool tool;
  tool.chartKind = pie.kind;
  tool.SetTitle(pie.title);
  tool.SetShowLegend(true);
  tool.SetPlotBackground(false, 0);
  tool.SetFrame(false, 0);
  tool.AttachStorage(&data);
  tool.ComputeRange();
  pictures->Add(pie.name, [&](auto... place) { return tool.RenderToFile(u"png", place...); });
}

}  // namespace

void DrawShowcase(Pictures* pictures) {
  const GraphicsStartup graphics;
  for (const LineCase& line : LineCases()) DrawLine(line, pictures);
  for (const PieCase& pie : PieCases()) DrawPie(pie, pictures);
}

}  // namespace orvo::tools

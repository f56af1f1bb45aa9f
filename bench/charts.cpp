// Drawing each chart of a report, beside the bare calls of the drawing library that make the same strokes and texts and
// encode the picture; and the memory that a thousand charts take.

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <pango/pangocairo.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

#include "bench/support/ratio_reporter.h"
#include "engine/categories.h"
#include "graphs/report_util.h"
#include "platform/clock.h"
#include "platform/path.h"
#include "tests/support/scripted_engine.h"

namespace orvo::bench {
namespace {

constexpr int kWidth = 600;
constexpr int kHeight = 200;
constexpr int kTalkers = 10;
constexpr int kSizes = 6;
constexpr int kGraphSeries = 3;

/// A folder that is gone with the program.
const std::string& Folder() {
  static const struct Temporary {
    std::string path = (std::filesystem::temp_directory_path() / "orvo-bench-XXXXXX").string();
    Temporary() {
      if (!mkdtemp(path.data())) std::abort();
    }
    ~Temporary() { std::filesystem::remove_all(path); }
  } folder;
  return folder.path;
}

std::string File() {
  return Folder() + "/chart.png";
}

double Sample(int i) {
  return 1e5 * (5 + 3 * std::sin(i * 0.07) + std::sin(i * 0.9));
}

/// An engine with something to see in each chart.
struct Charts {
  test::ScriptedEngine engine;
  ComPtr<IStatsContext> context;
  ComPtr<ITrafficHistory> history;
  ComPtr<ISizeStats> sizes;
  ComPtr<IGraph> graph;
  std::unique_ptr<ReportUtil> util;
  std::u16string file = PathFromSystem(File());

  Charts() {
    test::Script& script = engine.live;
    const std::uint64_t start = TimeFromUnix(1'700'000'000'000'000'000);
    script.history_start = start;
    for (int i = 0; i < 120; ++i) script.history.push_back(Sample(i));
    script.size_buckets = {500, 300, 120, 90, 700, 60};
    for (std::uint8_t i = 0; i < 40; ++i) {
      NodeEntry node;
      node.address = script.AddIp(192, 168, 1, i);
      node.packets_sent = 1;
      node.bytes_sent = std::uint64_t{1000} * (40U - i);
      script.nodes.push_back(node);
    }
    test::ScriptedGraph shares{.name = u"Transport Shares", .title = {}, .interval = 1, .start = start, .series = {}};
    for (const char16_t* name : {u"TCP", u"UDP", u"Other"}) {
      std::vector<double> samples;
      samples.reserve(300);
      for (int i = 0; i < 300; ++i) samples.push_back(Sample(i + 40 * static_cast<int>(shares.series.size())));
      shares.series.push_back({name, std::move(samples)});
    }
    script.graphs.push_back(shares);
    util = std::make_unique<ReportUtil>();
    context = engine.Context();
    if (Failed(GetCategory(context.get(), kTrafficHistoryCategory, &history)) ||
        Failed(GetCategory(context.get(), kSizeCategory, &sizes)) ||
        Failed(engine.Graphs()->GetGraph(0, graph.Out()))) {
      std::abort();
    }
  }

  Status TrafficHistory() { return util->TrafficHistoryChart(history.get(), file.c_str(), kWidth, kHeight); }
  Status TopTalkers() { return util->TopTalkersChart(context.get(), file.c_str(), kWidth, kHeight); }
  Status SizeDistribution() { return util->SizeDistributionChart(sizes.get(), file.c_str(), kWidth, kHeight); }
  Status EngineGraph() {
    return util->EngineGraphChart(graph.get(), 0, 0, /*lacks_site=*/true, file.c_str(), kWidth, kHeight);
  }
};

Charts& TheCharts() {
  static Charts charts;
  return charts;
}

template <Status (Charts::*draw)()>
void DrawChart(benchmark::State& state) {
  Charts& charts = TheCharts();
  for (auto _ : state) {
    if (Failed((charts.*draw)())) state.SkipWithError("the chart was not drawn");
  }
}

/// The drawing library as one calls it who knows where everything goes, with a font map that lives as long as the
/// program.
class Bare {
 public:
  Bare() : surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight)), cairo_(cairo_create(surface_)) {
    static PangoContext* const context = [] {
      PangoFontMap* map = pango_cairo_font_map_new();
      pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(map), 96);
      return pango_font_map_create_context(map);
    }();
    context_ = context;
    cairo_set_source_rgb(cairo_, 1, 1, 1);
    cairo_paint(cairo_);
    cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
  }
  Bare(const Bare&) = delete;
  Bare& operator=(const Bare&) = delete;
  ~Bare() {
    cairo_destroy(cairo_);
    cairo_surface_destroy(surface_);
  }

  void Text(const char* text, double x, double y, double points = 8, bool bold = false, bool upwards = false) {
    PangoLayout* layout = pango_layout_new(context_);
    PangoFontDescription* font = pango_font_description_from_string(bold ? "Arial Bold" : "Arial");
    pango_font_description_set_size(font, static_cast<int>(points * PANGO_SCALE));
    pango_layout_set_font_description(layout, font);
    pango_layout_set_text(layout, text, -1);
    PangoRectangle box;
    pango_layout_get_extents(layout, nullptr, &box);
    cairo_save(cairo_);
    cairo_set_source_rgb(cairo_, 0, 0, 0);
    cairo_move_to(cairo_, x, y);
    if (upwards) cairo_rotate(cairo_, -std::numbers::pi / 2);
    pango_cairo_show_layout(cairo_, layout);
    cairo_restore(cairo_);
    pango_font_description_free(font);
    g_object_unref(layout);
  }

  void Line(double x1, double y1, double x2, double y2) {
    cairo_set_source_rgb(cairo_, 0.9, 0.9, 0.9);
    cairo_set_line_width(cairo_, 1);
    cairo_move_to(cairo_, x1, y1);
    cairo_line_to(cairo_, x2, y2);
    cairo_stroke(cairo_);
  }

  void Series(int points, int shift, double height) {
    cairo_set_source_rgba(cairo_, 0, 0, shift == 0 ? 0.75 : 0.4, 0.75);
    cairo_set_line_width(cairo_, 1.5);
    for (int i = 0; i < points; ++i) {
      cairo_line_to(cairo_, 60 + i * 520.0 / (points - 1), 40 + height * (1 - Sample(i + shift) / 1e6));
    }
    cairo_stroke(cairo_);
  }

  void Slice(double start, double sweep, int number) {
    for (bool fill : {true, false}) {
      cairo_set_source_rgba(cairo_, number * 0.1, 0.5, 0.7, fill ? 0.75 : 1);
      cairo_set_line_width(cairo_, 1);
      cairo_move_to(cairo_, 230, 115);
      cairo_arc(cairo_, 230, 115, 70, start, start + sweep);
      cairo_close_path(cairo_);
      fill ? cairo_fill(cairo_) : cairo_stroke(cairo_);
    }
  }

  void LegendEntry(const char* name, double x, double y) {
    cairo_set_source_rgba(cairo_, 0.1, 0.5, 0.7, 0.75);
    cairo_rectangle(cairo_, x, y + 3, 7, 7);
    cairo_fill(cairo_);
    Text(name, x + 13, y);
  }

  void Box(double x, double y, double width, double height) {
    cairo_set_source_rgb(cairo_, 0, 0, 0);
    cairo_set_line_width(cairo_, 1);
    cairo_rectangle(cairo_, x + 0.5, y + 0.5, width, height);
    cairo_stroke(cairo_);
  }

  /// Encodes the picture in memory, writes a file and renames it.
  void Save() {
    std::string bytes;
    cairo_surface_write_to_png_stream(
        surface_,
        [](void* out, const unsigned char* data, unsigned int length) {
          static_cast<std::string*>(out)->append(reinterpret_cast<const char*>(data), length);
          return CAIRO_STATUS_SUCCESS;
        },
        &bytes);
    const std::string beside = File() + ".new";
    std::ofstream(beside, std::ios::binary) << bytes;
    std::filesystem::rename(beside, File());
  }

 private:
  cairo_surface_t* surface_;
  cairo_t* cairo_;
  PangoContext* context_ = nullptr;
};

void BareAxis(Bare* bare, int ticks, double height) {
  for (int i = 0; i <= ticks; ++i) {
    const double y = 40.5 + i * height / ticks;
    bare->Line(60, y, 580, y);
    bare->Text(std::to_string(i * 100).c_str(), 30, y - 6);
  }
  bare->Text("Mbits Per Second", 10, 150, 10, true, true);
}

void BareTrafficHistory(Bare* bare) {
  bare->Text("Traffic History - 2 Minute Window (1 Second Average)", 110, 10, 11, true);
  BareAxis(bare, 9, 130);
  for (int i = 0; i < 12; ++i) {
    bare->Line(60 + i * 43, 170, 60 + i * 43, 174);
    bare->Text("22:13:20", 40 + i * 43, 177);
  }
  bare->Series(120, 0, 130);
}

void BareEngineGraph(Bare* bare) {
  bare->Text("Transport Shares", 250, 10, 10, true);
  BareAxis(bare, 5, 90);
  for (int i = 0; i < 8; ++i) {
    bare->Line(60 + i * 65, 130, 60 + i * 65, 134);
    bare->Text("11/14/2023", 40 + i * 65, 137);
    bare->Text("22:13:20", 40 + i * 65, 150);
  }
  for (int series = 0; series < kGraphSeries; ++series) bare->Series(300, series * 40, 90);
  bare->Box(200, 172, 200, 20);
  for (const char* name : {"TCP", "UDP", "Other"}) bare->LegendEntry(name, 210, 176);
}

void BarePie(Bare* bare, int slices, const char* title, const char* label) {
  bare->Text(title, 220, 10, 11, true);
  const double sweep = 2 * std::numbers::pi / slices;
  for (int i = 0; i < slices; ++i) bare->Slice(i * sweep, sweep, i);
  bare->Box(450, 40, 120, slices * 13 + 8);
  for (int i = 0; i < slices; ++i) {
    const std::string number = std::to_string(i);
    bare->Text((label + number + "%").c_str(), 230 + 80 * std::cos(i * sweep), 115 + 80 * std::sin(i * sweep));
    bare->LegendEntry(("192.168.1." + number).c_str(), 455, 44 + i * 13);
  }
}

void BareTopTalkers(Bare* bare) {
  BarePie(bare, kTalkers, "Top Talkers by IP Address", "12.");
}
void BareSizeDistribution(Bare* bare) {
  BarePie(bare, kSizes, "Size Distribution", "512-1023 12.");
}

template <void (*draw)(Bare*)>
void DrawBare(benchmark::State& state) {
  for (auto _ : state) {
    Bare bare;
    draw(&bare);
    bare.Save();
  }
}

/// Bytes that the program has in use on its heap.
double HeapBytes() {
  return static_cast<double>(mallinfo2().uordblks);
}

/// A thousand charts, after which nothing may be left: grows by no more than the caches of the drawing library do.
void DrawThousand(benchmark::State& state) {
  Charts& charts = TheCharts();
  for (int i = 0; i < 20; ++i) (void)charts.EngineGraph();
  for (auto _ : state) {
    const double before = HeapBytes();
    for (int i = 0; i < 250; ++i) {
      (void)charts.TrafficHistory();
      (void)charts.TopTalkers();
      (void)charts.SizeDistribution();
      (void)charts.EngineGraph();
    }
    state.counters["KB_grown"] = (HeapBytes() - before) / 1024;
  }
}

BENCHMARK(DrawChart<&Charts::TrafficHistory>)->Name("traffic_history")->Unit(benchmark::kMillisecond);
BENCHMARK(DrawBare<BareTrafficHistory>)->Name("traffic_history/floor")->Unit(benchmark::kMillisecond);
BENCHMARK(DrawChart<&Charts::TopTalkers>)->Name("top_talkers")->Unit(benchmark::kMillisecond);
BENCHMARK(DrawBare<BareTopTalkers>)->Name("top_talkers/floor")->Unit(benchmark::kMillisecond);
BENCHMARK(DrawChart<&Charts::SizeDistribution>)->Name("size_distribution")->Unit(benchmark::kMillisecond);
BENCHMARK(DrawBare<BareSizeDistribution>)->Name("size_distribution/floor")->Unit(benchmark::kMillisecond);
BENCHMARK(DrawChart<&Charts::EngineGraph>)->Name("engine_graph")->Unit(benchmark::kMillisecond);
BENCHMARK(DrawBare<BareEngineGraph>)->Name("engine_graph/floor")->Unit(benchmark::kMillisecond);
BENCHMARK(DrawThousand)->Name("thousand_charts")->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);

}  // namespace
}  // namespace orvo::bench

int main(int argc, char** argv) {
  return orvo::bench::RunWithRatios(argc, argv);
}

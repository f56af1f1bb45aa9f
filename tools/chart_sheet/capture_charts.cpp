#include "tools/chart_sheet/capture_charts.h"

#include <fmt/core.h>

#include <cctype>
#include <memory>

#include "capture/context/capture_engine.h"
#include "capture/source/capture_file.h"
#include "engine/categories.h"
#include "graphs/report_util.h"
#include "platform/code_page.h"
#include "platform/error.h"

namespace orvo::tools {
namespace {

void ReadCapture(const std::string& path, CaptureEngine* engine) {
  SourceError error;
  const std::unique_ptr<PacketSource> source = OpenCaptureFile(path, &error);
  if (!source) throw ToolError(error.message);
  for (Packet packet; source->Next(&packet);) engine->Feed(packet);
  if (Failed(source->warning().status)) fmt::print(stderr, "chart-sheet: warning: {}\n", source->warning().message);
}

/// "graph-packets-per-second" for "Packets per Second".
std::string FileNameOf(const std::u16string& graph) {
  std::string name = "graph-";
  for (const char c : ToUtf8(graph)) {
    const bool letter = std::isalnum(static_cast<unsigned char>(c)) != 0;
    if (!letter && name.back() == '-') continue;
    name += letter ? static_cast<char>(std::tolower(static_cast<unsigned char>(c))) : '-';
  }
  return name;
}

void DrawGraphs(CaptureEngine* engine, ReportUtil* util, Pictures* pictures) {
  const ComPtr<IGraphCollection> graphs = engine->Graphs();
  std::uint32_t count = 0;
  Check(graphs->GetCount(&count));
  for (std::uint32_t i = 0; i < count; ++i) {
    ComPtr<IGraph> graph;
    std::u16string name;
    Check(graphs->GetGraph(i, graph.Out()));
    Check(graph->GetName(&name));
    pictures->Add(FileNameOf(name), [&](auto... place) {
      return util->EngineGraphChart(graph.get(), 0, 0, /*lacks_site=*/true, place...);
    });
  }
}

}  // namespace

void DrawCapture(const std::string& capture, Pictures* pictures) {
  CaptureEngine engine;
  Check(engine.RegisterClasses());
  ReadCapture(capture, &engine);
  ReportUtil util;
  const ComPtr<IStatsContext> context = engine.Context();
  if (Failed(context->IsAvailable())) throw ToolError(fmt::format("{}: holds no packet", capture));
  ComPtr<ITrafficHistory> history;
  ComPtr<ISizeStats> sizes;
  Check(GetCategory(context.get(), kTrafficHistoryCategory, &history));
  Check(GetCategory(context.get(), kSizeCategory, &sizes));
  pictures->Add("traffic-history", [&](auto... place) { return util.TrafficHistoryChart(history.get(), place...); });
  pictures->Add("top-talkers", [&](auto... place) { return util.TopTalkersChart(context.get(), place...); });
  pictures->Add("size-distribution", [&](auto... place) { return util.SizeDistributionChart(sizes.get(), place...); });
  DrawGraphs(&engine, &util, pictures);
}

}  // namespace orvo::tools

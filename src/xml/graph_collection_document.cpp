#include <algorithm>
#include <unordered_map>
#include <vector>

#include "graphs/chart_builder.h"
#include "platform/error.h"
#include "platform/utf.h"
#include "platform/xml_tree.h"
#include "prefs/switch_ids.h"
#include "statistics/graph_file_name.h"
#include "xml/graph_documents.h"
#include "xml/picture_folder.h"
#include "xml/report_document.h"

namespace orvo {
namespace {

constexpr std::u16string_view kFile = u"Graphs.xml";
constexpr std::string_view kRoot = "GraphCollection";
constexpr std::int32_t kWidth = 744;
constexpr std::int32_t kHeight = 556;
constexpr std::uint32_t kMostPoints = 300;
constexpr std::uint32_t kPointsPerName = 20;
constexpr std::uint64_t kShortestSpan = 3600;  // seconds
constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;

/// Which samples of a graph are shown, and in how many points.
struct Span {
  std::uint64_t start = 0;  ///< nanoseconds since 1601-01-01 UTC
  std::uint32_t samples = 0;

  bool is_thinned() const { return samples >= kMostPoints; }
  std::uint32_t points() const { return is_thinned() ? kMostPoints : samples; }
  std::uint32_t step() const { return is_thinned() ? samples / kMostPoints : 0; }
  /// The most points that such steps make of the samples: fewer than twice as many as are shown.
  std::uint32_t most_answered() const { return is_thinned() ? (samples + step() - 1) / step() : samples; }
};

Span SpanOf(const XmlReport& report, IGraph& graph) {
  std::uint32_t interval = 0;
  Span span;
  Check(graph.GetInterval(&interval));
  Check(graph.GetSampleCount(&span.samples));
  if (report.memory.no_rates) return span;
  const std::uint64_t seconds = std::max<std::uint64_t>(report.interval, kShortestSpan);
  const std::uint64_t length = seconds * kNanosecondsPerSecond;
  span.start = report.time_mark > length ? report.time_mark - length : 0;
  const std::uint64_t shown = seconds / std::max<std::uint32_t>(interval, 1);
  span.samples = static_cast<std::uint32_t>(std::min<std::uint64_t>(shown, span.samples));
  return span;
}

/// Reads one series into the chart, its newest sample at the last point. The cursor goes round as a whole, so that
/// every series meets the same points; of more samples than points the newest remain.
void DrawSeries(XmlReport& report, IGraphSeries& source, std::uint32_t series, const Span& span,
                CZxGraphDataStorage* data) {
  std::vector<double> values(span.most_answered());
  std::vector<std::uint64_t> times(span.most_answered());
  auto count = static_cast<std::uint32_t>(values.size());
  Check(source.GetSamples(series, span.start, span.step(), &count, values.data(), times.data()));
  count = std::min(count, static_cast<std::uint32_t>(values.size()));
  if (count == 0) return;
  const std::uint32_t points = span.points();
  for (std::uint32_t blank = (points - count % points) % points; blank > 0; --blank) data->AdvanceCursor();
  std::u16string label;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t slot = data->AdvanceCursor();
    data->SetValue(series, slot, values[i]);
    if (series != 0 || i % kPointsPerName != 0) continue;
    report.util.FormatTimestamp(times[i], &label);
    data->SetPointLabel(slot, label);
  }
}

void DrawGraph(XmlReport& report, IGraph& graph, const std::u16string& path) {
  const Span span = SpanOf(report, graph);
  ComPtr<IGraphSeries> source;
  Check(graph.GetSeries(source.Out()));
  if (!source) Raise(E_FAIL);
  ChartBuilder chart(kChartOverTime);
  chart.data.SetPointCount(span.points());
  std::u16string text;
  Check(graph.GetTitle(&text));
  chart.tool.SetTitle(text);
  chart.tool.SetValueAxisTitle(u"Values");
  chart.tool.SetShowLegend(true);
  chart.tool.pointLabelsOn = 1;
  std::uint32_t count = 0;
  Check(source->GetCount(&count));
  for (std::uint32_t series = 0; series < count; ++series) {
    Check(source->GetName(series, &text));
    chart.data.EnsureSeries(series, text);
    chart.data.ResetSeries(series, 0.0);
  }
  for (std::uint32_t series = 0; series < count; ++series) DrawSeries(report, *source, series, span, &chart.data);
  Check(chart.Render(path.c_str(), kWidth, kHeight));
}

/// The "Graph" elements of the document by name, the first of each.
class GraphElements {
 public:
  GraphElements(XmlElement root, bool is_kept) : root_(root), is_kept_(is_kept) {
    if (!is_kept_) return;
    for (XmlElement graph = root.FirstChild(); graph; graph = graph.NextSibling()) {
      if (const auto name = graph.Attribute("Name")) by_name_.try_emplace(*name, graph);
    }
  }

  /// Those of the reports before are looked for in a kept document only.
  XmlElement Of(const std::u16string& name) {
    const std::u16string stored = AsStored(name);
    if (auto found = by_name_.find(stored); is_kept_ && found != by_name_.end()) return found->second;
    XmlElement graph = root_.AddElement("Graph");
    graph.SetAttribute("Name", name);
    by_name_.try_emplace(stored, graph);
    return graph;
  }

 private:
  /// A name as a document gives it back, without the characters that none can hold.
  static std::u16string AsStored(const std::u16string& name) {
    XmlTree document;
    XmlElement element = document.AddRoot("Graph");
    element.SetAttribute("Name", name);
    return element.Attribute("Name").value_or(name);
  }

  XmlElement root_;
  bool is_kept_;
  std::unordered_map<std::u16string, XmlElement> by_name_;
};

bool WriteCollection(XmlReport& report) {
  const SwitchReading wanted = ReadSwitch(report, kSwitchOutputGraphs);
  if (wanted.value == 0) return false;
  // A report of a special kind begins anew, and so does one that finds nothing to go on from.
  XmlTree document;
  XmlElement root;
  const Status loaded = report.memory.special_kind ? E_FAIL : document.Load(PathBelow(report, kFile));
  if (loaded == E_OUTOFMEMORY) Raise(loaded);  // nothing wrong with the file
  const bool is_kept = Succeeded(loaded) && document.Root().Name() == u"GraphCollection";
  if (is_kept) {
    root = document.Root();
  } else {
    document = XmlTree();
    root = document.AddRoot(kRoot);
  }

  GraphElements elements(root, is_kept);
  std::uint32_t count = 0;
  Check(report.job.graphs->GetCount(&count));
  for (std::uint32_t index = 0; index < count; ++index) {
    ComPtr<IGraph> graph;
    Check(report.job.graphs->GetGraph(index, graph.Out()));
    if (!graph) Raise(E_FAIL);
    std::u16string name;
    Check(graph->GetName(&name));
    const std::u16string picture = PictureName(name, report.memory.collection_number);
    DrawGraph(report, *graph, MakePictureFolder(report) + picture);
    elements.Of(name).AddElement("Image").SetAttribute("src", PictureSource(picture));
  }
  ++report.memory.collection_number;
  const std::u16string path = PathBelow(report, kFile);
  Check(document.Save(path));
  if (report.observer) report.observer->FileDone(path.c_str(), count, S_OK);
  return wanted.status == S_OK;
}

}  // namespace

std::u16string PictureName(std::u16string_view graph, std::uint32_t number) {
  return GraphFileName(graph) + u"_" + NumberText(number) + u".png";
}

bool WriteGraphCollection(XmlReport& report) {
  return Contain(report, kFile, [&] { return WriteCollection(report); });
}

}  // namespace orvo

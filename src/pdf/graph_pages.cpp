#include "pdf/picture_folder.h"
#include "pdf/sections.h"
#include "prefs/switch_ids.h"
#include "statistics/graph_file_name.h"

namespace orvo {
namespace {

constexpr std::int32_t kWidth = 400;
constexpr std::int32_t kHeight = 300;
constexpr std::uint64_t kShortestSpan = 0;  ///< which the chart takes for its own shortest

void DrawPage(PdfReport& report, PdfOutline* parent, const std::u16string& name, const std::u16string& caption,
              const std::u16string& picture) {
  bool bookmark_pending = true;
  const PdfPage* page = report.document.AddPage(parent, name, &bookmark_pending);
  PdfCursor cursor;
  cursor.ResetX();
  cursor.TopY(report.document.PageHeight(page));
  MustBeDrawn(report.document.DrawBoldText(caption, cursor.x, cursor.y));
  cursor.AfterTitle();
  MustBeDrawn(report.document.DrawImageFitWidth(picture, &cursor.y));
}

}  // namespace

void DrawGraphPages(PdfReport& report, PdfOutline* parent) {
  if (!report.IsOn(kSwitchOutputGraphs)) return;
  MakePictureFolder(report);
  std::uint32_t count = 0;
  Check(report.job.graphs->GetCount(&count));
  for (std::uint32_t index = 0; index < count; ++index) {
    ComPtr<IGraph> graph;
    Check(report.job.graphs->GetGraph(index, graph.Out()));
    if (!graph) Raise(E_POINTER);
    std::u16string name;
    std::u16string caption;
    Check(graph->GetName(&name));
    Check(graph->GetTitle(&caption));
    PlaceChart(
        report, GraphFileName(name),
        [&](const char16_t* path) {
          return report.util.EngineGraphChart(graph.get(), kShortestSpan, report.time_mark, report.lacks_site, path,
                                              kWidth, kHeight);
        },
        [&](const std::u16string& path) { DrawPage(report, parent, name, caption, path); });
  }
}

}  // namespace orvo

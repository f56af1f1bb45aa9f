#include "engine/categories.h"
#include "pdf/picture_folder.h"
#include "pdf/sections.h"
#include "statistics/obtain.h"
#include "util/ascii.h"
#include "util/duration.h"
#include "util/formatting.h"
#include "util/string_table.h"

namespace orvo {
namespace {

/// What the three lines at the top tell.
struct Totals {
  std::uint64_t start = 0;
  std::uint64_t duration = 0;
  std::uint64_t bytes = 0;
  std::uint64_t packets = 0;
};

Totals ReadTotals(IStatsContext& live) {
  Totals totals;
  Check(live.GetStartTime(&totals.start));
  Check(live.GetDuration(&totals.duration));
  Check(live.GetTotalBytes(&totals.bytes));
  Check(live.GetTotalPackets(&totals.packets));
  return totals;
}

void DrawTotals(PdfReport& report, const Totals& totals, PdfCursor* cursor) {
  std::u16string start;
  report.util.FormatTimestamp(totals.start, &start);
  std::u16string duration;
  Check(FormatDuration(static_cast<std::int64_t>(totals.duration), kNoFraction, TextOf(kStrDaysAndTime), &duration));
  const std::u16string lines[] = {
      u"Orvo Engine Report: " + report.time_text,
      u"Start: " + start + u", Duration: " + duration,
      u"Total Bytes: " + WidenAscii(std::to_string(totals.bytes)) + u", Total Packets: " +
          WidenAscii(std::to_string(totals.packets)),
  };
  for (const std::u16string& line : lines) {
    MustBeDrawn(report.document.DrawBoldText(line, cursor->x, cursor->y));
    cursor->AfterTitle();
  }
}

/// A chart of the dashboard. `draw` answers S_FALSE when the capture has nothing to draw.
struct DashboardChart {
  std::u16string_view name;
  std::int32_t width;  ///< in pixels; 0 for what lies between the margins, a pixel to the point
  std::int32_t height;
  float height_on_page;
  Status (*draw)(PdfReport& report, const char16_t* path, std::int32_t width, std::int32_t height);
};

Status DrawTraffic(PdfReport& report, const char16_t* path, std::int32_t width, std::int32_t height) {
  const ComPtr<ITrafficHistory> history = Obtain(*report.job.live, kTrafficHistoryCategory);
  return history ? report.util.TrafficHistoryChart(history.get(), path, width, height) : S_FALSE;
}

Status DrawTopTalkers(PdfReport& report, const char16_t* path, std::int32_t width, std::int32_t height) {
  if (!Obtain(*report.job.live, kTopTalkerCategory)) return S_FALSE;
  return report.util.TopTalkersChart(report.job.live, path, width, height);
}

Status DrawSizes(PdfReport& report, const char16_t* path, std::int32_t width, std::int32_t height) {
  const ComPtr<ISizeStats> sizes = Obtain(*report.job.live, kSizeCategory);
  return sizes ? report.util.SizeDistributionChart(sizes.get(), path, width, height) : S_FALSE;
}

// On A4 the third finds room only where one of the first two is missing.
constexpr DashboardChart kCharts[] = {
    {u"TrafficGraph", 0, 180, 180, DrawTraffic},
    {u"TopTalkers", 0, 200, 200, DrawTopTalkers},
    {u"SizeDistribution", 310, 190, 230, DrawSizes},
};

}  // namespace

void DrawDashboard(PdfReport& report, PdfOutline* parent) {
  bool bookmark_pending = true;
  const PdfPage* page = report.document.AddPage(parent, u"Dashboard", &bookmark_pending);
  PdfCursor cursor;
  cursor.ResetX();
  cursor.TopY(report.document.PageHeight(page));
  DrawTotals(report, ReadTotals(*report.job.live), &cursor);
  MakePictureFolder(report);
  const auto text_width = static_cast<std::int32_t>(report.document.PageWidth(page) - kPdfSideMargins);
  for (const DashboardChart& chart : kCharts) {
    const std::int32_t width = chart.width == 0 ? text_width : chart.width;
    PlaceChart(
        report, chart.name, [&](const char16_t* path) { return chart.draw(report, path, width, chart.height); },
        // A chart that finds no room is left out, and the next one tried.
        [&](const std::u16string& path) {
          (void)report.document.DrawImageFitHeight(path, &cursor.y, chart.height_on_page);
        });
  }
}

}  // namespace orvo

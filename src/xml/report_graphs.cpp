#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "xml/graph_documents.h"
#include "xml/picture_folder.h"
#include "xml/report_document.h"

namespace orvo {
namespace {

/// A picture of the index. `draw` answers S_FALSE when the capture has nothing to draw.
struct Picture {
  std::string_view element;
  std::u16string_view file;
  std::int32_t width;
  std::int32_t height;
  Status (*draw)(XmlReport& report, const Picture& picture);
};

std::u16string PathOf(XmlReport& report, const Picture& picture) {
  return MakePictureFolder(report) + std::u16string(picture.file);
}

Status DrawTraffic(XmlReport& report, const Picture& picture) {
  const ComPtr<ITrafficHistory> history = Obtain(*report.job.live, kTrafficHistoryCategory);
  if (!history) return S_FALSE;
  return report.util.TrafficHistoryChart(history.get(), PathOf(report, picture).c_str(), picture.width, picture.height);
}

Status DrawTopTalkers(XmlReport& report, const Picture& picture) {
  return report.util.TopTalkersChart(report.job.live, PathOf(report, picture).c_str(), picture.width, picture.height);
}

Status DrawSizes(XmlReport& report, const Picture& picture) {
  const ComPtr<ISizeStats> sizes = Obtain(*report.job.live, kSizeCategory);
  if (!sizes) return S_FALSE;
  return report.util.SizeDistributionChart(sizes.get(), PathOf(report, picture).c_str(), picture.width, picture.height);
}

constexpr Picture kPictures[] = {
    {"TrafficGraph", u"TrafficGraph.png", 600, 200, DrawTraffic},
    {"TopTalkersGraph", u"TopTalkers.png", 420, 220, DrawTopTalkers},
    {"SizeGraph", u"SizeDistribution.png", 310, 190, DrawSizes},
};

}  // namespace

bool WriteReportGraphs(XmlReport& report) {
  return Contain(report, kIndexFile, [&] {
    if (!report.IsOn(kSwitchOutputGraphs)) return false;
    report.index.Take("Graphs");
    XmlStream stream(kPartDepth);
    const XmlWriter graphs = stream.Add("Graphs");
    const Status status = Guard([&] {
      for (const Picture& picture : kPictures) {
        if (Check(picture.draw(report, picture)) == S_FALSE) continue;
        graphs.AddElement(picture.element).SetAttribute("src", PictureSource(picture.file));
      }
    });
    // The pictures before one that could not be drawn are there.
    report.index.Add(stream.Finish(), 0);
    Check(status);
    return true;
  });
}

}  // namespace orvo

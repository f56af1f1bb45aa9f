// The PDF report as a whole: dashboard, pages of graphs, what ends it, and what it leaves behind.

#include "tests/pdf/pdf_judge.h"
#include "tests/pdf/pdf_report_fixture.h"
#include "tests/support/watched_graph.h"

namespace orvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class PdfStatsOutputTest : public PdfReportTest {
 protected:
  PdfStatsOutputTest() {
    engine.live.history = {1, 2, 3};
    engine.live.history_start = Moment(-3);
    engine.live.size_buckets = {1, 2, 3, 4, 5, 6};
    NodeEntry node;
    node.address = engine.live.AddIp(10, 0, 0, 1);
    node.packets_sent = node.bytes_sent = 5;
    engine.live.nodes.push_back(node);
    Switch(kSwitchOutputNodeStats, 0);
  }
  void AddGraph(const std::u16string& name) {
    engine.live.graphs.push_back({.name = name,
                                  .title = u"Title of " + name,
                                  .interval = 1,
                                  .start = Moment(-3),
                                  .series = {{u"one", {1, 2, 3}}}});
  }
  /// The files of charts that the observer heard to have failed.
  std::vector<std::u16string> Charts() const {
    std::vector<std::u16string> names;
    const std::u16string pictures = folder.ReportFolder() + u"Temp\\";
    for (const ScriptedEngine::FileReport& file : engine.files) {
      if (file.path.starts_with(pictures) && Failed(file.status)) names.push_back(file.path.substr(pictures.size()));
    }
    return names;
  }
  Page Dashboard() { return PdfPages(Report()).at(0); }
};

TEST_F(PdfStatsOutputTest, TheDashboardTellsWhatWasCapturedAndShowsTheChartsThatFindRoom) {
  engine.live.duration = 183'845'250'000'000;
  engine.live.total_bytes = 18446744073709551615U;
  ASSERT_EQ(Output(), S_OK);
  ExpectSound(Report());
  EXPECT_THAT(Dashboard(), ElementsAre("791 50:*Orvo Engine Report: 11/22/2026 14:05:09",
                                       "761 50:*Start: 11/22/2026 14:05:02, Duration: 2d 03:04:05",
                                       "731 50:*Total Bytes: 18446744073709551615, Total Packets: 10",
                                       "521 50:image 495x180", "297 50:image 495x200"));
  EXPECT_THAT(PdfOutlineOf(Report()), ElementsAre("Orvo Engine Report +", "  Dashboard 1", "  Statistics"));
  EXPECT_THAT(folder.Names(), ElementsAre("Report.pdf", "Temp"));
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path("Temp")));

  // The sizes take the place of a chart that is missing.
  for (const char* operation : {"ITrafficHistory::GetSamples", "ITrafficHistory::GetInterval"}) {
    engine.Fail(operation, 1, E_FAIL);
    ASSERT_EQ(Output(), S_OK);
    EXPECT_THAT(Dashboard(), testing::IsSupersetOf({"501 50:image 495x200", "247 110:image 375x230"}));
  }
  engine.live.missing = {kTopTalkerCategory.identifier, kTrafficHistoryCategory.identifier};
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Dashboard(), SizeIs(4));
  EXPECT_EQ(Heard().status, S_OK) << "a chart that cannot be drawn is no failure of the report";
  EXPECT_THAT(Charts(), ElementsAre(u"TrafficGraph.png", u"TrafficGraph.png")) << "none for what the capture lacks";
  engine.live.missing.push_back(kSizeCategory.identifier);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Dashboard(), SizeIs(3));
  // A query of the dashboard's own ends it, and the report goes on.
  engine.Fail("IStatsContext::GetTotalPackets", 1, kDenied);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Dashboard(), IsEmpty());
  EXPECT_EQ(Heard().status, kDenied);
}

TEST_F(PdfStatsOutputTest, EveryGraphHasItsPage) {
  AddGraph(u"Rate / s: all");
  AddGraph(u"Second");
  AddGraph(u"Third");
  engine.Fail("IGraphSeries::GetSamples", 2, E_FAIL);
  ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  ExpectSound(Report());
  EXPECT_THAT(Entries(), ElementsAre("  Graphs", "    Rate / s: all 2", "    Third 3"))
      << "a graph that cannot be drawn has no page";
  EXPECT_THAT(PdfPages(Report()).at(1), ElementsAre("791 50:*Title of Rate / s: all", "390 50:image 495x371"));
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path("Temp")));

  Switch(kSwitchOutputGraphs, 0);
  ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  EXPECT_THAT(Entries(), ElementsAre("  Graphs"));
  EXPECT_THAT(Reported().Entries(), IsEmpty());
}

TEST_F(PdfStatsOutputTest, AFailingPageOfGraphsLeavesTheReportBeforeIt) {
  AddGraph(u"First");
  AddGraph(u"Second");
  for (const auto& [operation, nth] :
       {std::pair("IGraph::GetName", 3), {"IGraphCollection::GetGraph", 2}, {"IGraphCollection::GetCount", 1}}) {
    folder.Write("Report.pdf", "the one before");
    engine.Fail(operation, nth, kDenied);
    EXPECT_EQ(Output(engine.Graphs().get()), kDenied) << operation;
    EXPECT_EQ(folder.Read("Report.pdf"), "the one before");
    EXPECT_EQ(Heard().status, kDenied);
    EXPECT_EQ(Heard().rows, 0U);
  }
}

TEST_F(PdfStatsOutputTest, TheFileNameOfAGraphStaysInItsFolder) {
  // A folder of that name keeps the chart from being written, so that the page is missing.
  std::filesystem::create_directories(folder.Path("Temp/Rate_-_s-_all.png"));
  AddGraph(u"Rate / s: all");
  AddGraph(u"..\\..\\x");
  ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  EXPECT_THAT(Entries(), ElementsAre("  Graphs", HasSubstr("x 2")));
  EXPECT_THAT(Charts(), ElementsAre(u"Rate_-_s-_all.png"));
}

TEST_F(PdfStatsOutputTest, ChecksItsArgumentsAndWhetherThereIsAnythingToReport) {
  EXPECT_EQ(method->Output(nullptr, nullptr, nullptr), E_FAIL);
  EXPECT_EQ(method->Output(Bstr(folder.ReportFolder()).get(), nullptr, nullptr), E_POINTER);
  EXPECT_EQ(method->OutputLive(nullptr, nullptr, nullptr), E_POINTER);
  engine.availability = E_FAIL;
  EXPECT_EQ(Output(), S_OK);
  EXPECT_EQ(OutputLive(), S_OK);
  EXPECT_THAT(folder.Names(), IsEmpty());
  EXPECT_EQ(engine.marks.size(), 1U) << "the snapshot has been taken";
  engine.availability = S_FALSE;
  EXPECT_EQ(OutputLive(), S_OK);
  EXPECT_TRUE(folder.Has("Report.pdf"));
  engine.Fail("IStatsContext::GetAddressTable", 2, kDenied);  // the first call is the top talkers'
  EXPECT_EQ(Output(), kDenied);
}

TEST_F(PdfStatsOutputTest, AFileThatCannotBeSavedIsAFailureThatTheObserverHearsTheCauseOf) {
  std::filesystem::create_directory(folder.Path("Report.pdf"));
  EXPECT_EQ(Output(), E_FAIL);
  EXPECT_TRUE(Failed(Heard().status));
  EXPECT_NE(Heard().status, E_FAIL);
  EXPECT_EQ(Heard().path, folder.ReportFolder() + u"Report.pdf");
}

TEST_F(PdfStatsOutputTest, ALiveReportReadsNoSnapshotAndHasTheTimeOfNow) {
  engine.live.summary.push_back({kStatTotalPackets, kStatFirstGroup, u"Packets", {kSummaryPackets, 77}});
  engine.at_snapshot = Script();
  AddGraph(u"Graph");
  ASSERT_EQ(OutputLive(engine.Graphs().get()), S_OK);
  EXPECT_THAT(engine.marks, IsEmpty());
  const std::vector<Page> pages = PdfPages(Report());
  ASSERT_THAT(pages, SizeIs(3));
  EXPECT_THAT(pages[1].back(), HasSubstr("350:77"));
  EXPECT_THAT(pages[0].at(0), HasSubstr("Orvo Engine Report: "));
  EXPECT_THAT(pages[0].at(0), testing::Not(HasSubstr("14:05:09")));
  EXPECT_THAT(Entries(), Contains("    Graph 3"));
}

TEST_F(PdfStatsOutputTest, GraphsShowTheLastHourUntilALiveReportFindsNoCapture) {
  auto graph = MakeObject<WatchedGraph>();
  ASSERT_EQ(Output(graph.get()), S_OK);
  EXPECT_EQ(graph->start, Moment(-3600));
  ASSERT_EQ(OutputLive(graph.get()), S_OK);  // without a site
  EXPECT_EQ(graph->start, 0U);
  graph->start = 1;
  ASSERT_EQ(Output(graph.get()), S_OK);
  EXPECT_EQ(graph->start, 0U) << "what the live report found stays";
}

}  // namespace
}  // namespace orvo::test

// The graphs of the report and those of the engine: pictures, documents that grow, names from outside.

#include "xml/graph_documents.h"

#include <gmock/gmock.h>

#include "tests/support/watched_graph.h"
#include "tests/xml/xml_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(PictureName, StaysOneNameWhateverTheGraphIsCalled) {
  const std::pair<std::u16string, std::u16string> names[] = {
      {u"a b/c:d", u"a_b-c-d_3.png"},
      {u"..\\..\\x", u"..-..-x_3.png"},
      {u"", u"_3.png"},
      {std::u16string(u"a\0\n\xD800", 4) + u"b", u"a---b_3.png"},
      {u"Größe \U0001F4C8", u"Größe_\U0001F4C8_3.png"},
      {std::u16string(1000, u'x'), std::u16string(230, u'x') + u"_3.png"},
      {std::u16string(1000, u'ß'), std::u16string(115, u'ß') + u"_3.png"},
  };
  for (const auto& [graph, picture] : names) EXPECT_EQ(PictureName(graph, 3), picture);
}

/// The width and height of a PNG file, from its first chunk.
std::pair<int, int> SizeOf(const std::string& png) {
  auto number = [&](std::size_t at) {
    return static_cast<std::uint8_t>(png.at(at + 2)) * 256 + static_cast<std::uint8_t>(png.at(at + 3));
  };
  return {number(16), number(20)};
}

class GraphDocumentsTest : public XmlReportTest {
 protected:
  GraphDocumentsTest() {
    SwitchOff({kSwitchOutputNodeStats, kSwitchOutputProtocolStats});
    engine.live.missing = {kSummaryCategory.identifier};
    engine.live.history = {1, 2, 3};
    engine.live.history_start = Moment(-3);
    engine.live.size_buckets = {1, 2, 3, 4, 5, 6};
    AddGraph(u"Rate / s");
    AddGraph(u"Size");
  }
  void AddGraph(const std::u16string& name) {
    engine.live.graphs.push_back({.name = name,
                                  .title = u"Title",
                                  .interval = 1,
                                  .start = Moment(-3),
                                  .series = {{u"one", {1, 2, 3}}, {u"two", {3, 2, 1}}}});
  }
};

TEST_F(GraphDocumentsTest, ReportGraphs) {
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(Reported().folder.Read("StatsReport.xml"), R"(<?xml version="1.0" encoding="utf-8"?>
<StatsReport>
  <Graphs>
    <TrafficGraph src=".\Graphs\TrafficGraph.png" />
    <TopTalkersGraph src=".\Graphs\TopTalkers.png" />
    <SizeGraph src=".\Graphs\SizeDistribution.png" />
  </Graphs>
</StatsReport>
)");
  EXPECT_EQ(SizeOf(folder.Read("Graphs/TrafficGraph.png")), std::pair(600, 200));
  EXPECT_EQ(SizeOf(folder.Read("Graphs/TopTalkers.png")), std::pair(420, 220));
  EXPECT_EQ(SizeOf(folder.Read("Graphs/SizeDistribution.png")), std::pair(310, 190));
  EXPECT_FALSE(folder.Has("Graphs.xml")) << "no collection was given";
}

TEST_F(GraphDocumentsTest, AFailureKeepsThePicturesBefore) {
  engine.live.missing.push_back(kTrafficHistoryCategory.identifier);
  engine.Fail("ISizeStats::GetBuckets", 1, E_FAIL);
  EXPECT_THAT(Reported().Children("StatsReport.xml", {"Graphs"}), ElementsAre("TopTalkersGraph"));
  Switch(kSwitchOutputGraphs, 0);
  engine.live.graphs.clear();
  ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  EXPECT_FALSE(folder.Has("Graphs.xml"));
}

TEST_F(GraphDocumentsTest, TheCollectionGrowsFromReportToReport) {
  ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  EXPECT_EQ(SizeOf(folder.Read("Graphs/Rate_-_s_1.png")), std::pair(744, 556));
  engine.Fail("IGraphSeries::GetSamples", 3, E_FAIL);  // of the second graph
  ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  EXPECT_EQ(FileStatus("Graphs.xml"), E_FAIL);
  AddGraph(u"Late");
  ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  EXPECT_EQ(folder.Read("Graphs.xml"), R"(<?xml version="1.0" encoding="utf-8"?>
<GraphCollection>
  <Graph Name="Rate / s">
    <Image src=".\Graphs\Rate_-_s_1.png" />
    <Image src=".\Graphs\Rate_-_s_2.png" />
  </Graph>
  <Graph Name="Size">
    <Image src=".\Graphs\Size_1.png" />
    <Image src=".\Graphs\Size_2.png" />
  </Graph>
  <Graph Name="Late">
    <Image src=".\Graphs\Late_2.png" />
  </Graph>
</GraphCollection>
)") << "the report that failed has used up no number";
  Switch(kSwitchOutputExpertSummary, 1);
  ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  EXPECT_THAT(Children("Graphs.xml", {"Graph"}), ElementsAre("Image")) << "begun anew";
  folder.Write("Graphs.xml", "<GraphCollection><Graph Name=");
  ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  EXPECT_THAT(folder.Read("Graphs.xml"), HasSubstr("Late_4.png"));
}

TEST_F(GraphDocumentsTest, ACollectionTooLargeToBeReadIsLeftAlone) {
  folder.Write("Graphs.xml", {});
  std::filesystem::resize_file(folder.Path("Graphs.xml"), std::uintmax_t{1} << 30);
  ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  EXPECT_EQ(FileStatus("Graphs.xml"), E_OUTOFMEMORY);
  EXPECT_EQ(std::filesystem::file_size(folder.Path("Graphs.xml")), std::uintmax_t{1} << 30);
}

TEST_F(GraphDocumentsTest, ANameThatNoDocumentHoldsIsFoundAgain) {
  engine.live.graphs.clear();
  AddGraph(u"a\x01/..\\b");
  for (int round = 0; round < 2; ++round) ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  EXPECT_THAT(Children("Graphs.xml", {}), ElementsAre("Graph"));
  EXPECT_THAT(Children("Graphs.xml", {"Graph"}), ElementsAre("Image", "Image"));
  EXPECT_TRUE(folder.Has("Graphs/a--..-b_2.png"));
}

TEST_F(GraphDocumentsTest, OtherKindsShowTheCollectionOfLiveReportsOnly) {
  Switch(kSwitchOutputConversationsOnly, 1);
  ASSERT_EQ(Output(engine.Graphs().get()), S_OK);
  EXPECT_FALSE(folder.Has("Graphs.xml"));
  ASSERT_EQ(OutputLive(engine.Graphs().get()), S_OK);
  EXPECT_TRUE(folder.Has("Graphs.xml"));
}

TEST_F(GraphDocumentsTest, TheSpanFollowsTheIntervalUnlessNothingIsCaptured) {
  auto graph = MakeObject<WatchedGraph>();
  const std::tuple<std::uint32_t, std::int64_t, std::uint32_t> cases[] = {
      {0, 3600, 12}, {3600, 3600, 12}, {7200, 7200, 24}, {4'000'000'000, 4'000'000'000, 33}};
  for (const auto& [interval, seconds, step] : cases) {
    method->SetInterval(interval);
    ASSERT_EQ(Output(graph.get()), S_OK);
    EXPECT_EQ(graph->start, Moment(-seconds));
    EXPECT_EQ(graph->step, step);
    EXPECT_GE(graph->capacity, 300U);
    EXPECT_LT(graph->capacity, 600U);
  }
  ASSERT_EQ(OutputLive(graph.get()), S_OK);  // without a site
  EXPECT_EQ(graph->start, 0U);
  EXPECT_EQ(graph->step, 33U);
}

}  // namespace
}  // namespace orvo::test

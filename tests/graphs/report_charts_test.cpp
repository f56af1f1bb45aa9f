#include <gmock/gmock.h>

#include <limits>

#include "engine/categories.h"
#include "graphs/report_util.h"
#include "platform/bitmap.h"
#include "platform/class_factory.h"
#include "platform/path.h"
#include "tests/support/scripted_engine.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

constexpr std::uint64_t kSecond = 1'000'000'000;
constexpr std::uint64_t kDay = 86'400 * kSecond;
constexpr std::uint64_t kStart = 425 * 365 * kDay;

class ReportChartsTest : public testing::Test {
 protected:
  ReportChartsTest() {
    Script& script = engine_.live;
    for (int i = 0; i < 60; ++i) script.history.push_back(i * 1e5);
    script.history_start = kStart;
    script.size_scheme = kSizesWireless;
    script.size_buckets = {5, 4, 3, 2, 1, 1, 1};
    for (std::uint8_t i = 1; i <= 15; ++i) {
      AddNode(script.AddIp(10, 0, 0, i), 1000U * i);
      AddNode(script.AddPhysical(i), 5000U * i);
    }
    ScriptedGraph graph{.name = u"Rates", .title = u"All rates", .interval = 1, .start = kStart, .series = {}};
    for (const char16_t* name : {u"in", u"out"}) graph.series.push_back({name, std::vector<double>(1000, 3)});
    script.graphs.push_back(graph);
  }

  void AddNode(std::uint32_t address, std::uint64_t bytes, std::uint64_t packets = 1) {
    NodeEntry node;
    node.address = address;
    node.bytes_sent = bytes;
    node.packets_sent = packets;
    engine_.live.nodes.push_back(node);
  }

  /// The four charts, by number.
  Status Draw(int chart, const char16_t* file, int width = 310, int height = 190) {
    ComPtr<IStatsContext> context = engine_.Context();
    ComPtr<ITrafficHistory> history;
    ComPtr<ISizeStats> sizes;
    ComPtr<IGraph> graph;
    EXPECT_EQ(GetCategory(context.get(), kTrafficHistoryCategory, &history), S_OK);
    EXPECT_EQ(GetCategory(context.get(), kSizeCategory, &sizes), S_OK);
    EXPECT_EQ(engine_.Graphs()->GetGraph(0, graph.Out()), S_OK);
    switch (chart) {
      case 0: return util_.TrafficHistoryChart(history.get(), file, width, height);
      case 1: return util_.TopTalkersChart(context.get(), file, width, height);
      case 2: return util_.SizeDistributionChart(sizes.get(), file, width, height);
      default: return util_.EngineGraphChart(graph.get(), 0, kStart + 1000 * kSecond, false, file, width, height);
    }
  }

  std::u16string Path(const std::string& name = "chart.png") const { return PathFromSystem(folder_.Path(name)); }

  /// The chart's bytes; they are the same when what it shows is.
  std::string Picture(int chart) {
    EXPECT_EQ(Draw(chart, Path().c_str()), S_OK);
    return folder_.Read("chart.png");
  }

  ScriptedEngine engine_;
  ReportUtil util_;
  TemporaryFolder folder_;
};

TEST_F(ReportChartsTest, EachIsAPictureOfTheSizeAskedFor) {
  for (int chart = 0; chart < 4; ++chart) {
    ASSERT_EQ(Draw(chart, Path().c_str(), 420, 220), S_OK) << chart;
    Bitmap bitmap;
    ASSERT_EQ(Bitmap::Load(Path(), &bitmap), S_OK);
    EXPECT_EQ(bitmap.width(), 420);
    EXPECT_EQ(bitmap.height(), 220);
    EXPECT_THAT(folder_.Names(), testing::ElementsAre("chart.png"));
  }
}

TEST_F(ReportChartsTest, FailuresOfTheEngineEndTheChart) {
  const std::tuple<int, const char*, int> cases[] = {
      {0, "ITrafficHistory::GetSamples", 1},
      {0, "ITrafficHistory::GetInterval", 1},
      {0, "ITrafficHistory::GetStartTime", 1},
      {1, "IStatsContext::GetAddressTable", 1},
      {1, "IAddressTable::GetRecord", 17},
      {1, "IAddressNameService::AppendAddressText", 9},
      {1, "IAddressNameService::AppendTypeLabel", 3},
      {2, "ISizeStats::GetScheme", 1},
      {2, "ISizeStats::GetBuckets", 1},
      {3, "IGraph::GetSampleCount", 1},
      {3, "IGraph::GetInterval", 1},
      {3, "IGraph::GetSeries", 1},
      {3, "IGraph::GetName", 1},
      {3, "IGraphSeries::GetCount", 1},
      {3, "IGraphSeries::GetName", 2},
      {3, "IGraphSeries::GetSamples", 2},
  };
  for (const auto& [chart, operation, nth] : cases) {
    engine_.Fail(operation, nth, MakeStatus(0x80001234));
    EXPECT_EQ(Draw(chart, Path().c_str()), MakeStatus(0x80001234)) << operation;
    EXPECT_THAT(folder_.Names(), testing::IsEmpty()) << operation;
    engine_.Fail({}, 0, S_OK);
  }
  engine_.live.missing = {kTopTalkerCategory.identifier};
  EXPECT_EQ(Draw(1, Path().c_str()), E_NOINTERFACE);
}

TEST_F(ReportChartsTest, NodesThatGoWhileTheyAreDrawnEndTheChart) {
  // 30 nodes are looked at to rank them, then the first again to name it.
  engine_.Fail("IAddressTable::GetRecord", 31, S_FALSE);
  EXPECT_EQ(Draw(1, Path().c_str()), E_FAIL);
  EXPECT_THAT(folder_.Names(), testing::IsEmpty());
}

TEST_F(ReportChartsTest, BadArgumentsLeaveNoFile) {
  for (int chart = 0; chart < 4; ++chart) {
    EXPECT_EQ(Draw(chart, nullptr), E_INVALIDARG);
    EXPECT_EQ(Draw(chart, Path().c_str(), 0, 100), E_FAIL);
    EXPECT_EQ(Draw(chart, Path("none/chart.png").c_str()), StatusFromError(kErrorPathNotFound));
  }
  EXPECT_EQ(util_.TrafficHistoryChart(nullptr, Path().c_str(), 9, 9), E_POINTER);
  EXPECT_EQ(util_.TopTalkersChart(nullptr, Path().c_str(), 9, 9), E_POINTER);
  EXPECT_EQ(util_.SizeDistributionChart(nullptr, Path().c_str(), 9, 9), E_POINTER);
  EXPECT_EQ(util_.EngineGraphChart(nullptr, 0, 0, true, Path().c_str(), 9, 9), E_POINTER);
  EXPECT_THAT(folder_.Names(), testing::IsEmpty());
}

TEST_F(ReportChartsTest, AHistoryShowsItsNewestSamples) {
  engine_.live.history.assign(500, 1e6);
  for (std::size_t i = 0; i < 380; ++i) engine_.live.history[i] = 9e9;
  const std::string long_history = Picture(0);
  // The same 120 samples alone, 380 seconds later.
  engine_.live.history.assign(120, 1e6);
  engine_.live.history_start += 380 * kSecond;
  EXPECT_EQ(Picture(0), long_history);
}

TEST_F(ReportChartsTest, TheWindowSuitsTheInterval) {
  // Of two intervals that share a window the pictures are alike as long as no label differs.
  engine_.live.history = {1e6};
  auto picture_of = [&](std::uint32_t interval) {
    engine_.live.history_interval = interval;
    return Picture(0);
  };
  EXPECT_EQ(picture_of(6), picture_of(10));
  EXPECT_NE(picture_of(5), picture_of(6));
  EXPECT_EQ(picture_of(86'400), picture_of(std::numeric_limits<std::uint32_t>::max()));
  EXPECT_NE(picture_of(300), picture_of(301)) << "with the date from the window of a day on";
  EXPECT_NE(picture_of(599), picture_of(600));
}

TEST_F(ReportChartsTest, TalkersBeyondTheNinthAreOthers) {
  const std::string fifteen = Picture(1);
  // The six smallest have 21,000 bytes together; those without packets count nowhere.
  engine_.live.nodes.resize(30);
  for (std::size_t i = 0; i < 12; ++i) engine_.live.nodes[i].packets_sent = 0;
  AddNode(engine_.live.AddIp(10, 0, 0, 99), 21'000);
  const std::string in_one = Picture(1);
  EXPECT_NE(fifteen, in_one) << "a single one is named";
  engine_.live.nodes.pop_back();
  AddNode(engine_.live.AddIp(10, 0, 0, 98), 5'000);
  AddNode(engine_.live.AddIp(10, 0, 0, 97), 5'500);
  AddNode(engine_.live.AddIp(10, 0, 0, 96), 5'500);
  AddNode(engine_.live.AddIp(10, 0, 0, 95), 5'000);
  EXPECT_EQ(Picture(1), fifteen);
}

TEST_F(ReportChartsTest, WithoutIpThePhysicalAddressesOfTheMediumTalk) {
  std::vector<NodeEntry> physical;
  for (const NodeEntry& node : engine_.live.nodes) {
    if (engine_.live.addresses[node.address].type == kAddressPhysical) physical.push_back(node);
  }
  engine_.live.nodes = physical;
  const std::string ethernet = Picture(1);
  const std::tuple<std::uint32_t, std::uint32_t, AddressType> cases[] = {
      {kMediumWan, 0, kAddressWan},
      {kMediumWanFrame, 0, kAddressWan},
      {kMediumTokenRing, 0, kAddressTokenRing},
      {kMediumTokenRing, 1, kAddressPhysical},
      {7, 0, kAddressPhysical},
  };
  for (const auto& [medium, subtype, type] : cases) {
    for (AddressRecord& record : engine_.live.addresses) {
      if (record.length == 6) record.type = type;
    }
    engine_.live.medium_type = medium;
    engine_.live.medium_subtype = subtype;
    EXPECT_EQ(Picture(1), ethernet) << medium << ", " << subtype;
  }
  for (AddressRecord& record : engine_.live.addresses) record.type = kAddressIpv6;
  EXPECT_NE(Picture(1), ethernet);
}

TEST_F(ReportChartsTest, EverySizeSchemeHasItsBuckets) {
  const std::pair<std::uint32_t, std::size_t> cases[] = {{1, 6}, {2, 9}, {3, 7}, {4, 11}, {5, 6}, {0, 2}, {77, 2}};
  for (auto [scheme, slices] : cases) {
    engine_.live.size_scheme = scheme;
    engine_.live.size_buckets.assign(slices, 4);
    const std::string exact = Picture(2);
    engine_.live.size_buckets.assign(slices + 3, 4);
    EXPECT_EQ(Picture(2), exact) << "scheme " << scheme << " has no more slices";
    engine_.live.size_buckets.assign(slices - 1, 4);
    EXPECT_NE(Picture(2), exact) << "nor fewer";
  }
}

TEST_F(ReportChartsTest, GraphsOfManySamplesAreAggregated) {
  auto& series = engine_.live.graphs[0].series;
  for (std::size_t i = 0; i < 1000; ++i) series[0].samples[i] = static_cast<double>(i / 3 % 7);
  const std::string aggregated = Picture(3);
  // 300 samples that are three times as long, and the same.
  ScriptedGraph& graph = engine_.live.graphs[0];
  graph.interval = 3;
  for (auto& s : graph.series) s.samples.resize(300);
  for (std::size_t i = 0; i < 300; ++i) series[0].samples[i] = static_cast<double>(i % 7);
  EXPECT_EQ(Picture(3), aggregated);
}

TEST_F(ReportChartsTest, GraphsWithASiteEndWithTheReport) {
  ScriptedGraph& graph = engine_.live.graphs[0];
  for (auto& series : graph.series) series.samples.assign(100, 2);
  const ComPtr<IGraphCollection> graphs = engine_.Graphs();
  ComPtr<IGraph> all;
  ASSERT_EQ(graphs->GetGraph(0, all.Out()), S_OK);
  auto picture = [&](std::uint64_t span, std::uint64_t report_time, bool lacks_site) {
    EXPECT_EQ(util_.EngineGraphChart(all.get(), span, report_time, lacks_site, Path().c_str(), 310, 190), S_OK);
    return folder_.Read("chart.png");
  };
  const std::string whole = picture(0, 0, true);
  EXPECT_EQ(picture(0, kStart + 100 * kSecond, false), whole) << "an hour at least";
  EXPECT_EQ(picture(std::numeric_limits<std::uint64_t>::max(), kStart, false), whole);
  EXPECT_NE(picture(0, kStart + 3650 * kSecond, false), whole) << "half of it is too old";
  EXPECT_EQ(picture(0, kStart + kDay, true), whole);
}

TEST_F(ReportChartsTest, OddNumbersOfTheEngineAreSurvived) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  engine_.live.history = {nan, std::numeric_limits<double>::infinity(), -5, 1e308};
  engine_.live.history_interval = 0;
  engine_.live.history_start = kStart;
  engine_.live.size_buckets.assign(7, std::numeric_limits<std::uint64_t>::max());
  engine_.live.graphs[0].series[1].samples.assign(3, nan);
  for (int chart : {0, 2, 3}) EXPECT_EQ(Draw(chart, Path().c_str()), S_OK) << chart;
  engine_.live = Script();
  engine_.live.graphs.emplace_back();
  for (int chart = 0; chart < 4; ++chart) EXPECT_EQ(Draw(chart, Path().c_str()), S_OK) << chart;
}

}  // namespace
}  // namespace orvo::test

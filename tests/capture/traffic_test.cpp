// Traffic over time: the history, the graphs, and the distribution of sizes.

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "capture/tables/graph_samples.h"
#include "capture/tables/size_distribution.h"
#include "capture/tables/traffic_history.h"
#include "engine/graphs.h"
#include "tests/capture/engine_fixture.h"

namespace orvo::test {
namespace {

constexpr std::uint64_t kYear = 365 * 86'400 * kSecond;

std::vector<std::uint64_t> Samples(TrafficHistory& history) {
  return history.Freeze().Samples();
}

TEST(TrafficHistory, CountsEachTimeInItsSample) {
  TrafficHistory history;
  EXPECT_TRUE(Samples(history).empty());
  EXPECT_EQ(history.Freeze().start, 0U);
  const std::uint64_t start = kNewYear + 700'000'000;  // samples begin with the first packet, not on a full second
  history.Add(start, 1);
  history.Add(start + kSecond - 1, 2);
  history.Add(start + kSecond, 4);
  history.Add(start + 3 * kSecond, 8);
  history.Add(start + 1, 16);      // back in time
  history.Add(start - kYear, 32);  // before the first packet
  EXPECT_EQ(Samples(history), (std::vector<std::uint64_t>{51, 4, 0, 8}));
  EXPECT_EQ(history.Freeze().start, start);
  EXPECT_EQ(history.Freeze().interval, 1U);
}

// The last second of each length's window, and the one behind it.
TEST(TrafficHistory, LengthensSamplesWhenTheChartIsFull) {
  const std::array<std::pair<std::uint64_t, std::uint32_t>, 10> windows{{{120, 1},
                                                                         {600, 5},
                                                                         {1800, 10},
                                                                         {3600, 30},
                                                                         {7200, 60},
                                                                         {21600, 120},
                                                                         {43200, 300},
                                                                         {86400, 600},
                                                                         {604800, 3600},
                                                                         {2678400, 21600}}};
  for (std::size_t i = 0; i < windows.size(); ++i) {
    const auto [span, length] = windows[i];
    TrafficHistory history;
    history.Add(kNewYear, 1);
    history.Add(kNewYear + span * kSecond - 1, 2);
    EXPECT_EQ(history.Freeze().interval, length);
    EXPECT_EQ(Samples(history).size(), span / length);
    history.Add(kNewYear + span * kSecond, 4);
    const std::uint32_t next = kSampleLengths[i + 1];
    EXPECT_EQ(history.Freeze().interval, next);
    const std::vector<std::uint64_t> samples = Samples(history);
    EXPECT_EQ(samples.size(), span / next + 1);
    EXPECT_EQ(samples.front() + samples[(span - 1) / next], next > span ? 6U : 3U);
  }
}

// One packet a second, each with a size of its own, so that a byte in a wrong sample shows.
TEST(TrafficHistory, FoldsExactly) {
  TrafficHistory history;
  constexpr std::uint64_t kSeconds = 50'000;
  for (std::uint64_t second = 0; second < kSeconds; ++second) {
    history.Add(kNewYear + second * kSecond + second % 1000, second);
    if (second % 997 == 0) history.Freeze();
  }
  ASSERT_EQ(history.Freeze().interval, 600U);
  const std::vector<std::uint64_t> samples = Samples(history);
  ASSERT_EQ(samples.size(), (kSeconds + 599) / 600);
  for (std::uint64_t i = 0; i < samples.size(); ++i) {
    const std::uint64_t first = i * 600;
    const std::uint64_t count = std::min<std::uint64_t>(600, kSeconds - first);
    EXPECT_EQ(samples[i], first * count + count * (count - 1) / 2) << i;
  }
}

TEST(TrafficHistory, StaysSmallWhateverTheTimes) {
  TrafficHistory history;
  GraphSamples graphs;
  PacketNote packet;
  packet.bytes = 1;
  std::uint64_t random = 1;
  for (int i = 0; i < 2000; ++i) {
    random = random * 6364136223846793005ULL + 1442695040888963407ULL;
    packet.time = i % 3 == 0 ? random : i % 3 == 1 ? kNewYear : ~std::uint64_t{0};
    history.Add(packet.time, packet.bytes);
    graphs.Add(packet, static_cast<std::uint32_t>(i));
  }
  const std::vector<std::uint64_t> samples = Samples(history);
  EXPECT_LE(samples.size(), 3650U);
  EXPECT_EQ(std::accumulate(samples.begin(), samples.end(), std::uint64_t{0}), 2000U);
  EXPECT_EQ(history.Freeze().interval, 86'400U);
  const FrozenGraphs frozen = graphs.Freeze();
  EXPECT_LE(frozen.measures.size(), GraphSamples::kMostSamples);
  EXPECT_EQ(frozen.protocols.size(), GraphSamples::kMostProtocols);
}

TEST(TrafficHistory, TheLastSampleTakesWhatIsLater) {
  TrafficHistory history;
  for (std::uint64_t year : {0U, 9U, 10U, 11U, 100U}) history.Add(kNewYear + year * kYear, 1);
  const std::vector<std::uint64_t> samples = Samples(history);
  ASSERT_EQ(samples.size(), 3650U);
  EXPECT_EQ(samples.back(), 3U);
}

TEST(TrafficHistory, IsACategoryOfBytesPerSecond) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);  // 60 bytes, 100 older ones, 42 a second and 60 three seconds later
  Buffer late = Ethernet(Mac(2), Mac(1), 0x0806, Arp());
  engine.Feed(MakePacket(late, kNewYear + 123 * kSecond));
  auto history = View(engine).Get(kTrafficHistoryCategory);
  const double* values = nullptr;
  std::uint32_t count = 0;
  ASSERT_EQ(history->GetSamples(&values, &count), S_OK);
  EXPECT_EQ(Ask(history)(&ITrafficHistory::GetInterval), 5U);
  EXPECT_EQ(Ask(history)(&ITrafficHistory::GetStartTime), kNewYear);
  ASSERT_EQ(count, 25U);
  EXPECT_EQ(values[0], 262 / 5.0);
  EXPECT_EQ(values[1], 0);
  EXPECT_EQ(values[24], 42 / 5.0);
  EXPECT_EQ(history->GetSamples(nullptr, &count), E_POINTER);
}

TEST(SizeDistribution, CountsEveryLengthOnceInEitherScheme) {
  // Lengths and their buckets among the Ethernet and the jumbo sizes.
  const std::tuple<std::uint32_t, std::size_t, std::size_t> cases[] = {
      {0, 0, 0},    {64, 0, 0},   {65, 1, 1},    {127, 1, 1},   {128, 1, 1},  {255, 1, 1},  {256, 2, 2},
      {511, 2, 2},  {512, 3, 3},  {1023, 3, 3},  {1024, 4, 4},  {1517, 4, 4}, {1518, 5, 4}, {1519, 5, 5},
      {2047, 5, 5}, {2048, 5, 6}, {4095, 5, 6},  {4096, 5, 7},  {8191, 5, 7}, {8192, 5, 8}, {9017, 5, 8},
      {9018, 5, 9}, {9022, 5, 9}, {9023, 5, 10}, {70000, 5, 10}};
  for (const auto& [length, ethernet, jumbo] : cases) {
    SizeCounts counts{};
    ++counts[SizeBucket(length)];
    std::vector<std::uint64_t> expected(6);
    expected[ethernet] = 1;
    EXPECT_EQ(SizeBuckets(counts, kSizesEthernet), expected) << length;
    expected.assign(11, 0);
    expected[jumbo] = 1;
    EXPECT_EQ(SizeBuckets(counts, kSizesJumbo), expected) << length;
    EXPECT_EQ(ChooseSizeScheme(counts), length > 1518 ? kSizesJumbo : kSizesEthernet) << length;
  }
}

TEST(SizeDistribution, TurnsJumboWithTheFirstLongFrame) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  View before(engine);
  Buffer frame = Ethernet(Mac(2), Mac(1), 0x0806, Arp());
  Packet packet = MakePacket(frame);
  packet.original_length = 9020;
  engine.Feed(packet);
  View after(engine);
  using Buckets = std::vector<std::uint64_t>;
  for (const auto& [view, scheme, expected] :
       {std::tuple{&before, kSizesEthernet, Buckets{3, 1, 0, 0, 0, 0}},
        std::tuple{&after, kSizesJumbo, Buckets{3, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0}}}) {
    EXPECT_EQ(Ask(view->Get(kSizeCategory))(&ISizeStats::GetScheme), scheme);
    EXPECT_EQ(view->SizeBuckets(), expected);
  }
  EXPECT_EQ(after.Value("1518 Bytes or More").first, 1U);
}

/// One graph of an engine, with its series.
struct GraphUnderTest {
  GraphUnderTest(CaptureEngine& engine, const std::string& wanted) {
    const ComPtr<IGraphCollection> graphs = engine.Graphs();
    for (std::uint32_t i = 0, count = Ask(graphs)(&IGraphCollection::GetCount); i < count; ++i) {
      const auto candidate = Ask(graphs)(&IGraphCollection::GetGraph, i);
      if (Ascii(Ask(candidate)(&IGraph::GetName)) == wanted) {
        graph = candidate;
      }
    }
    if (graph) series = Ask(graph)(&IGraph::GetSeries);
  }

  std::vector<std::string> Names() const {
    std::vector<std::string> names(Ask(series)(&IGraphSeries::GetCount));
    for (std::uint32_t i = 0; i < names.size(); ++i) names[i] = Ascii(Ask(series)(&IGraphSeries::GetName, i));
    return names;
  }

  std::vector<double> Values(std::uint32_t number, std::uint64_t start = 0, std::uint32_t step = 0,
                             std::uint32_t count = 100'000) const {
    std::vector<double> values(count, NAN);
    EXPECT_EQ(series->GetSamples(number, start, step, &count, values.data(), nullptr), S_OK);
    values.resize(count);
    return values;
  }

  ComPtr<IGraph> graph;
  ComPtr<IGraphSeries> series;
};

using Values = std::vector<double>;

TEST(Graphs, ShowWhatWasCounted) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  Buffer error = Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Ip4(1), Ip4(2), 1, Icmp(3)));            // 42 bytes
  Buffer tcp = Ethernet(Mac(2), Mac(1), 0x86DD, Ipv6(Ip6(1), Ip6(2), 6, Tcp(4000, 53, 0x10)));  // 74 bytes
  Buffer bad = Ethernet(Mac(2), Mac(1), 0x0800, {0x11});                                        // 15 bytes
  engine.Feed(MakePacket(error, kNewYear + kSecond));
  engine.Feed(MakePacket(tcp, kNewYear + kSecond));
  engine.Feed(MakePacket(bad, kNewYear + 3 * kSecond));
  // Seconds: 60 and 100 bytes of UDP; ARP, ICMP and TCP; nothing; 60 bytes of UDP and the malformed packet.
  const struct {
    const char* graph;
    std::vector<std::string> names;
    std::vector<Values> values;
  } cases[] = {
      {"Utilization", {"Bits per Second"}, {{1280, 8 * 158, 0, 600}}},
      {"Packets per Second", {"Packets per Second"}, {{2, 3, 0, 2}}},
      {"Packet Size", {"Mean Packet Size"}, {{80, 158 / 3.0, 0, 37.5}}},
      {"Transport Shares",
       {"TCP", "UDP", "Other"},
       {{0, 7400 / 158.0, 0, 0}, {100, 0, 0, 80}, {0, 8400 / 158.0, 0, 20}}},
      {"Broadcast and Multicast", {"Broadcast", "Multicast"}, {{0, 1, 0, 0}, {0, 0, 0, 1}}},
      {"Errors", {"Malformed Packets", "ICMP Errors", "Retransmissions"}, {{0, 0, 0, 1}, {0, 1, 0, 0}, {0, 0, 0, 0}}},
      {"Top Protocols",
       {"DNS", "mDNS", "ARP", "ICMP", "IPv4"},
       {{1280, 8 * 74, 0, 0}, {0, 0, 0, 480}, {0, 336, 0, 0}, {0, 336, 0, 0}, {0, 0, 0, 120}}},
  };
  EXPECT_EQ(Ask(engine.Graphs())(&IGraphCollection::GetCount), std::size(cases));
  for (const auto& c : cases) {
    SCOPED_TRACE(c.graph);
    GraphUnderTest test(engine, c.graph);
    ASSERT_TRUE(test.graph);
    EXPECT_EQ(test.Names(), c.names);
    for (std::uint32_t i = 0; i < c.values.size(); ++i) EXPECT_EQ(test.Values(i), c.values[i]) << i;
    EXPECT_FALSE(Ask(test.graph)(&IGraph::GetTitle).empty());
    std::uint32_t none = 7;
    EXPECT_EQ(test.series->GetSamples(static_cast<std::uint32_t>(c.names.size()), 0, 0, &none, nullptr, nullptr),
              E_INVALIDARG);
    EXPECT_EQ(none, 0U);
  }
  ComPtr<IGraph> beyond;
  EXPECT_EQ(engine.Graphs()->GetGraph(std::size(cases), beyond.Out()), E_INVALIDARG);
}

TEST(Graphs, CountRetransmissionsWhenTheyAreSent) {
  Buffer segment = Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Ip4(1), Ip4(2), 6, Tcp(4000, 80, 0x10, Zeros(9))));
  for (bool expert_analysis : {true, false}) {
    EngineOptions options;
    options.expert_analysis = expert_analysis;
    CaptureEngine engine(options);
    for (std::uint64_t second : {0U, 1U, 1U, 3U}) engine.Feed(MakePacket(segment, kNewYear + second * kSecond));
    EXPECT_EQ(GraphUnderTest(engine, "Errors").Values(2), expert_analysis ? Values({0, 2, 0, 1}) : Values(4, 0));
  }
}

// Ten samples of 1 to 10 packets.
TEST(Graphs, GiveSamplesFromAStartInGroups) {
  CaptureEngine engine;
  Buffer frame = Ethernet(Mac(2), Mac(1), 0x0806, Arp());
  for (std::uint64_t second = 0; second < 10; ++second) {
    for (std::uint64_t i = 0; i <= second; ++i) engine.Feed(MakePacket(frame, kNewYear + second * kSecond));
  }
  GraphUnderTest test(engine, "Packets per Second");
  const struct {
    std::uint64_t start;
    std::uint32_t step;
    std::uint32_t room;
    Values values;
  } cases[] = {
      {0, 0, 99, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
      {kNewYear, 1, 3, {1, 2, 3}},
      {kNewYear + 1, 0, 2, {2, 3}},  // the first sample at or after the start
      {kNewYear + 8 * kSecond, 0, 99, {9, 10}},
      {kNewYear + 9 * kSecond, 0, 99, {10}},
      {kNewYear + 9 * kSecond + 1, 0, 99, {}},
      {~std::uint64_t{0}, 5, 99, {}},
      {0, 2, 99, {1.5, 3.5, 5.5, 7.5, 9.5}},
      {0, 4, 99, {2.5, 6.5, 9.5}},  // the last group is of two
      {0, 4, 2, {2.5, 6.5}},
      {kNewYear + 7 * kSecond, 0xFFFFFFFF, 99, {9}},
      {0, 0, 0, {}},
  };
  for (const auto& c : cases) EXPECT_EQ(test.Values(0, c.start, c.step, c.room), c.values);

  std::uint32_t count = 99;
  std::vector<std::uint64_t> times(count);
  EXPECT_EQ(test.series->GetSamples(0, kNewYear + 1, 4, &count, nullptr, times.data()), S_OK);
  times.resize(count);
  EXPECT_EQ(times, (std::vector<std::uint64_t>{kNewYear + kSecond, kNewYear + 5 * kSecond, kNewYear + 9 * kSecond}));
  EXPECT_EQ(test.series->GetSamples(0, 0, 0, nullptr, nullptr, nullptr), E_POINTER);
}

TEST(Graphs, FoldToLongerSamples) {
  CaptureEngine engine;
  Buffer frame = Ethernet(Mac(2), Mac(1), 0x0806, Arp());
  for (std::uint64_t second = 0; second < 10'002; ++second) engine.Feed(MakePacket(frame, kNewYear + second * kSecond));
  for (const char* name : {"Utilization", "Top Protocols"}) {
    GraphUnderTest test(engine, name);
    EXPECT_EQ(Ask(test.graph)(&IGraph::GetInterval), 5U);
    EXPECT_EQ(Ask(test.graph)(&IGraph::GetSampleCount), 2001U);
    Values expected(2001, 8 * 42);
    expected.back() = 8 * 42 * 2 / 5.0;
    EXPECT_EQ(test.Values(0), expected);
  }
}

TEST(Graphs, AreOfTheMomentThatAReportBegan) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  ComPtr<IGraphCollection> graphs = engine.Graphs();
  ComPtr<IStatsContext> context = engine.Context();
  auto packets = [&] {
    EXPECT_GT(Ask(graphs)(&IGraphCollection::GetCount), 1U);
    const auto series = Ask(Ask(graphs)(&IGraphCollection::GetGraph, 1U))(&IGraph::GetSeries);
    std::uint32_t count = 1;
    double first = 0;
    EXPECT_EQ(series->GetSamples(0, 0, 0, &count, &first, nullptr), S_OK);
    return first;
  };
  ASSERT_EQ(context->IsAvailable(), S_OK);
  FeedSmallCapture(&engine);
  EXPECT_EQ(packets(), 2) << "as the context, which still shows the moment before";
  ASSERT_EQ(context->IsAvailable(), S_OK);
  EXPECT_EQ(packets(), 4);
  context = nullptr;
  FeedSmallCapture(&engine);
  EXPECT_EQ(engine.Graphs()->GetCount(nullptr), E_POINTER);
}

TEST(Graphs, OfAnEmptyCaptureAreEmpty) {
  CaptureEngine engine;
  GraphUnderTest utilization(engine, "Utilization");
  EXPECT_TRUE(utilization.Values(0).empty());
  EXPECT_TRUE(GraphUnderTest(engine, "Top Protocols").Names().empty());
}

}  // namespace
}  // namespace orvo::test

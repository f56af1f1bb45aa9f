#include <gtest/gtest.h>

#include "tests/capture/engine_fixture.h"

namespace orvo::test {
namespace {

/// Queries to a name server, each of a flow of its own and answered after 5 ms: there is no such name.
void FeedQueries(CaptureEngine* engine, unsigned count) {
  Buffer question = Buffer{0, 0, 0, 0, 0, 0} + Buffer{1, 'x', 0} + Be16(1) + Be16(1);
  for (unsigned i = 0; i < count; ++i) {
    Buffer query = Be16(7) + Be16(0x0100) + Be16(1) + question;
    Buffer answer = Be16(7) + Be16(0x8183) + Be16(1) + question;
    std::uint64_t time = kNewYear + i * kSecond;
    engine->Feed(
        MakePacket(Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Ip4(1), Ip4(2), 17, Udp(4000 + i, 53, query))), time));
    engine->Feed(MakePacket(Ethernet(Mac(1), Mac(2), 0x0800, Ipv4(Ip4(2), Ip4(1), 17, Udp(53, 4000 + i, answer))),
                            time + 5'000'000));
  }
}

std::string Rows(CaptureEngine& engine) {
  const View view(engine);
  std::string text;
  for (std::uint32_t kind : {kTableFlows, kTableApplications, kTableEventCounts, kTableEventLog}) {
    text += std::to_string(Ask(view.Table(kind))(&ITable::GetRowCount)) + " ";
  }
  return text;
}

TEST(ExpertEngine, ListsFlowsApplicationsAndEvents) {
  CaptureEngine engine;
  EXPECT_EQ(Rows(engine), "0 0 0 0 ");
  FeedQueries(&engine, 5);
  EXPECT_EQ(Rows(engine), "5 1 1 5 ");
  EXPECT_EQ(View(engine).Value("Expert Events").first, 5U);
  engine.StoreSummary(u"before");
  EXPECT_EQ(View(engine).context->ResetStatistics(), S_OK);
  EXPECT_EQ(Rows(engine), "0 0 0 0 ");
  FeedQueries(&engine, 2);
  EXPECT_EQ(Rows(engine), "2 1 1 2 ");
  EXPECT_EQ(View(engine).Value("Expert Events").first, 2U);
  EXPECT_EQ(View(engine).Value("Expert Events", 1).first, 5U);
}

TEST(ExpertEngine, KeepsWithinItsLimits) {
  EngineOptions options;
  options.max_flows = 2;
  options.max_expert_flows = 1;
  options.max_expert_events = 4;
  CaptureEngine engine(options);
  FeedQueries(&engine, 10);
  EXPECT_EQ(Rows(engine), "3 1 1 4 ");
  EXPECT_EQ(View(engine).Value("Expert Flows Not Listed").first, 7U);
  EXPECT_EQ(View(engine).Value("Expert Events Not Listed").first, 6U);

  options.expert_analysis = false;
  CaptureEngine without(options);
  FeedQueries(&without, 10);
  EXPECT_EQ(Rows(without), "0 0 0 0 ");
}

TEST(ExpertEngine, TakesTheTargetThatItIsGiven) {
  for (auto [target, expected] : {std::pair{6'000'000U, "1.00"}, {2'000'000U, "0.50"}, {1'000'000U, "0.00"}}) {
    EngineOptions options;
    options.apdex_target = target;
    CaptureEngine engine(options);
    FeedQueries(&engine, 1);
    EXPECT_EQ(CellOf(View(engine).Table(kTableFlows), 0, 7), expected);
  }
}

}  // namespace
}  // namespace orvo::test

#include <gmock/gmock.h>

#include "tests/text/text_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;

constexpr const char* kFile = "Node-Protocol Detail Statistics.csv";
constexpr const char* kHeader =
    "Time Saved,Source Address,Percentage Sent,Destination Address,Percentage Received,Protocol,Protocol Percentage,"
    "Bytes,Packets,";
const std::string kSaved = "11/22/2026 14:05:09,";

class DetailFileTest : public TextReportTest {
 protected:
  DetailFileTest() {
    OnlySection(kSwitchOutputNodeDetails);
    engine.protocol_tree = {{6, {u"TCP", 0}}};
    source_ = engine.live.AddIp(10, 0, 0, 1);
    destination_ = engine.live.AddIp(10, 0, 0, 2);
    stranger_ = engine.live.AddIp(10, 0, 0, 3);
    protocol_ = engine.live.AddProtocol(6);
    engine.live.nodes.resize(2);
    engine.live.nodes[0].address = source_;
    engine.live.nodes[0].bytes_sent = 300;
    engine.live.nodes[1].address = destination_;
    engine.live.nodes[1].bytes_received = 800;
    engine.live.protocols.push_back({.key = protocol_, .packets = 1, .bytes = 400});
  }

  void Add(std::uint32_t from, std::uint32_t to, std::uint32_t protocol, std::uint64_t bytes) {
    engine.live.conversations.push_back({{from, to, protocol}, 7, bytes});
  }

  std::uint32_t source_, destination_, stranger_, protocol_;
};

TEST_F(DetailFileTest, ShowsSharesAndLeavesEmptyWhatThereIsNothingToShareIn) {
  Add(source_, destination_, protocol_, 100);
  Add(destination_, source_, protocol_, 100);  // has sent nothing; has received nothing
  Add(stranger_, 4711, 4711, 18446744073709551615U);
  EXPECT_THAT(Written(kFile), ElementsAre(kHeader, kSaved + "10.0.0.1,33.333,10.0.0.2,12.500,TCP,25.000,100,7,",
                                          kSaved + "10.0.0.2,,10.0.0.1,,TCP,25.000,100,7,",
                                          kSaved + "10.0.0.3,,,,,,18446744073709551615,7,"));
}

TEST_F(DetailFileTest, NeedsAllItsTablesAndEndsWhereAQueryFails) {
  Add(source_, destination_, protocol_, 100);
  Add(source_, destination_, protocol_, 100);
  for (const Guid& table : {kConversationCategory.identifier, kNodeCategory.identifier, kProtocolCategory.identifier}) {
    engine.live.missing = {table};
    EXPECT_THAT(Written(kFile), testing::IsEmpty());
  }
  engine.live.missing.clear();
  for (const auto& [operation, nth] : {std::pair("IConversationIndex::Resolve", 2),
                                       {"IConversationStats::GetEntry", 2},
                                       {"INodeStats::FindByAddress", 4}}) {
    engine.Fail(operation, nth, E_FAIL);
    EXPECT_EQ(Written(kFile).size(), 2U) << operation;
  }
  Switch(kSwitchOutputNodeDetails, 0);
  EXPECT_THAT(Written(kFile), testing::IsEmpty());
}

}  // namespace
}  // namespace orvo::test

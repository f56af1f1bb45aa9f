#include <gmock/gmock.h>

#include <filesystem>
#include <utility>

#include "tests/text/text_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;

constexpr const char* kFile = "Protocol Statistics-Instance.csv";
const std::string kSaved = "11/22/2026 14:05:09,";

class ProtocolFileTest : public TextReportTest {
 protected:
  ProtocolFileTest() {
    OnlySection(kSwitchOutputProtocolStats);
    engine.protocol_tree = {{1, {u"Switch", 0}}, {2, {u"Ethernet", 1}}, {3, {u"IP, old", 2}}, {5000, {u"TCP", 3}}};
  }

  void Add(std::uint16_t number, std::uint64_t packets = 1, std::uint64_t bytes = 2) {
    const std::uint32_t key = engine.live.AddProtocol(number);
    engine.live.protocols.push_back({.key = key, .packets = packets, .bytes = bytes});
  }

  std::vector<std::string> Rows() {
    const std::vector<std::string> lines = Written(kFile);
    return {lines.begin() + 1, lines.end()};
  }
};

TEST_F(ProtocolFileTest, PathsLeadFromTheOutermostProtocolWithoutTheSwitch) {
  Add(1, 10, 11);
  Add(2, 20, 21);
  Add(5000, 30, 18446744073709551615U);
  EXPECT_THAT(Rows(), ElementsAre(kSaved + "1,Switch,Switch,10,11", kSaved + "2,Ethernet,Ethernet,20,21",
                                  kSaved + "5000,TCP,Ethernet//IP- old//TCP,30,18446744073709551615"));
  EXPECT_EQ(FileLines(kFile).at(0), "Report::Time,ID,Name,Path,Packets,Bytes");
}

TEST_F(ProtocolFileTest, SwitchesDecidePathAndPackets) {
  Add(5000, 30, 31);
  Switch(kSwitchProtoPath, 0);
  EXPECT_THAT(Rows(), ElementsAre(kSaved + "5000,TCP,30,31"));
  EXPECT_EQ(FileLines(kFile).at(0), "Report::Time,ID,Name,Packets,Bytes");
  Switch(kSwitchProtoPackets, 0);
  EXPECT_THAT(Rows(), ElementsAre(kSaved + "5000,TCP,31"));
  Switch(kSwitchOutputProtocolStats, 0);
  EXPECT_THAT(Written(kFile), testing::IsEmpty());
}

TEST_F(ProtocolFileTest, PassesOverWhatIsNoProtocolOrCannotBeNamed) {
  engine.live.protocols.push_back({.key = engine.live.AddIp(10, 0, 0, 1)});
  engine.live.protocols.push_back({.key = 4711});
  engine.protocol_tree[7] = {u"", 2};
  engine.protocol_tree[8] = {u"", 7};
  engine.protocol_tree[9] = {u"Below the nameless", 8};
  Add(9);
  Add(2);
  EXPECT_THAT(Rows(), ElementsAre(kSaved + "2,Ethernet,Ethernet,1,2"));
  Add(3);
  for (const auto& [operation, nth] :
       {std::pair("IProtocolNameService::GetChain", 3), {"IProtocolNameService::AppendName", 8}}) {
    engine.Fail(operation, nth, E_FAIL);  // a call for the last entry
    EXPECT_THAT(Rows(), ElementsAre(kSaved + "2,Ethernet,Ethernet,1,2")) << operation;
  }
}

TEST_F(ProtocolFileTest, CountsComeFromTheSnapshotAndNamesFromTheLiveTable) {
  Add(2, 1, 1);
  engine.at_snapshot = engine.live;
  engine.at_snapshot->addresses.clear();
  engine.live.protocols.clear();
  EXPECT_THAT(Rows(), ElementsAre(kSaved + "2,Ethernet,Ethernet,1,1"));
}

}  // namespace
}  // namespace orvo::test

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

#include "tests/text/text_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kIpFile = "Node Statistics-IP.csv";
constexpr const char* kSaved = "11/22/2026 14:05:09";
constexpr std::uint32_t kNodeColumnSwitches[] = {
    kSwitchNodePackets,    kSwitchNodeFirstTime,    kSwitchNodeLastTime, kSwitchNodeBroadBytes, kSwitchNodeBroadPackets,
    kSwitchNodeMultiBytes, kSwitchNodeMultiPackets, kSwitchNodeMinSize,  kSwitchNodeMaxSize};

class NodeFilesTest : public TextReportTest {
 protected:
  NodeFilesTest() { OnlySection(kSwitchOutputNodeStats); }

  void AddNode(std::uint32_t address, std::uint64_t bytes_sent) {
    NodeEntry node;
    node.address = address;
    node.bytes_sent = bytes_sent;
    engine.live.nodes.push_back(node);
  }

  void SwitchColumnsOff() {
    for (std::uint32_t column : kNodeColumnSwitches) Switch(column, 0);
  }
};

TEST_F(NodeFilesTest, LeavesWhatNeverHappenedEmptyButNotASizeOfZero) {
  AddNode(engine.live.AddIp(10, 0, 0, 2), 42);
  engine.live.nodes[0].min_size_received = 0;
  EXPECT_EQ(Written(kIpFile).at(1), std::string(kSaved) + ",10.0.0.2,,,,,0,42,0,0,0,0,0,0,,,0,");
}

TEST_F(NodeFilesTest, SwitchesDecideEachColumn) {
  AddNode(engine.live.AddIp(10, 0, 0, 1), 2);
  SwitchColumnsOff();
  EXPECT_THAT(Written(kIpFile),
              ElementsAre("Time Saved,Address,Bytes Sent,Bytes Received", std::string(kSaved) + ",10.0.0.1,2,0"));

  const std::pair<std::uint32_t, const char*> cases[] = {
      {kSwitchNodePackets, "Packets Sent,Bytes Sent,Packets Received,Bytes Received"},
      {kSwitchNodeFirstTime, "First Time Sent,First Time Received,Bytes Sent,Bytes Received"},
      {kSwitchNodeLastTime, "Last Time Sent,Last Time Received,Bytes Sent,Bytes Received"},
      {kSwitchNodeBroadPackets, "Bytes Sent,Bytes Received,Broadcast Packets"},
      {kSwitchNodeBroadBytes, "Bytes Sent,Bytes Received,Broadcast Bytes"},
      {kSwitchNodeMultiPackets, "Bytes Sent,Bytes Received,Multicast Packets"},
      {kSwitchNodeMultiBytes, "Bytes Sent,Bytes Received,Multicast Bytes"},
      {kSwitchNodeMinSize, "Bytes Sent,Bytes Received,Min Size Sent,Min Size Received"},
      {kSwitchNodeMaxSize, "Bytes Sent,Bytes Received,Max Size Sent,Max Size Received"},
  };
  for (const auto& [id, titles] : cases) {
    SwitchColumnsOff();
    Switch(id, 7);  // any value but 0 is on
    EXPECT_EQ(Written(kIpFile).at(0), std::string("Time Saved,Address,") + titles);
  }
}

TEST_F(NodeFilesTest, EachFamilyHasItsFileInTheOrderOfTheAddressTable) {
  AddNode(engine.live.AddIp(10, 0, 0, 9), 1);
  AddNode(engine.live.AddPhysical(0x020000000001), 2);
  AddNode(engine.live.AddIp(10, 0, 0, 1), 3);
  engine.live.AddIp(10, 0, 0, 7);  // an address without a node entry
  SwitchColumnsOff();
  EXPECT_THAT(Written(kIpFile),
              ElementsAre(testing::_, std::string(kSaved) + ",10.0.0.9,1,0", std::string(kSaved) + ",10.0.0.1,3,0"));
  EXPECT_THAT(FileLines("Node Statistics-Physical.csv"),
              ElementsAre(testing::_, std::string(kSaved) + ",2.0.0.0.0.1,2,0"));
  EXPECT_THAT(FileLines("Node Statistics-IPv6.csv"), ElementsAre("Time Saved,Address,Bytes Sent,Bytes Received"));
}

TEST_F(NodeFilesTest, SwitchesDecideEachFile) {
  const std::pair<std::uint32_t, const char*> files[] = {
      {kSwitchOutputNodeHierarchy, "Node Statistics-Hierarchy.csv"},
      {kSwitchNodeTypeIP, kIpFile},
      {kSwitchNodeTypeIPv6, "Node Statistics-IPv6.csv"},
      {kSwitchNodeTypeDEC, "Node Statistics-DECnet.csv"},
      {kSwitchNodeTypeApple, "Node Statistics-AppleTalk.csv"},
      {kSwitchNodeTypeIPX, "Node Statistics-IPX.csv"},
      {kSwitchNodeTypePhysical, "Node Statistics-Physical.csv"},
  };
  for (const auto& [id, name] : files) Switch(id, 0);
  for (const auto& [id, name] : files) {
    Switch(id, 1);
    EXPECT_THAT(Reported().folder.Names(), ElementsAre(name, "Summary Statistics.csv"));
    std::filesystem::remove(folder.Path(name));
    Switch(id, 0);
  }
  preferences->SetDefaults();
  OnlySection(0xFFFF);
  EXPECT_THAT(Reported().folder.Names(), ElementsAre("Summary Statistics.csv"));
}

TEST_F(NodeFilesTest, HierarchyNamesThePhysicalAddressFirst) {
  const std::uint32_t physical = engine.live.AddPhysical(0x020000000001);
  const std::uint32_t logical = engine.live.AddIp(10, 0, 0, 1);
  engine.live.hierarchy = {
      {.address = physical, .parent = kNoAddress, .packets_sent = 99},
      {.address = physical,
       .parent = logical,
       .packets_sent = 1,
       .bytes_sent = 10,
       .packets_received = 2,
       .bytes_received = 20},
      {.address = 4711, .parent = logical, .packets_sent = 5},
  };
  engine.live.total_packets = 100;
  engine.live.total_bytes = 1000;
  EXPECT_THAT(
      Written("Node Statistics-Hierarchy.csv"),
      ElementsAre("Time Saved,Physical Address,Logical Address,Total Packets,Total Bytes,Total Packets,Total Bytes,"
                  "Packets Received,Bytes Received,Packets Sent,Bytes Sent,",
                  std::string(kSaved) + ",2.0.0.0.0.1,10.0.0.1,100,1000,3,30,2,20,1,10",
                  std::string(kSaved) + ",,10.0.0.1,100,1000,5,0,0,0,5,0"));
}

TEST_F(NodeFilesTest, MissingObjectsSkipTheirFilesOnly) {
  AddNode(engine.live.AddIp(10, 0, 0, 1), 2);
  engine.live.missing = {kHierarchyCategory.identifier};
  EXPECT_EQ(Written(kIpFile).size(), 2U);
  EXPECT_FALSE(folder.Has("Node Statistics-Hierarchy.csv"));

  engine.live.missing = {kNodeCategory.identifier};
  EXPECT_EQ(Written(kIpFile).size(), 0U);
  EXPECT_TRUE(folder.Has("Node Statistics-Hierarchy.csv"));
}

TEST_F(NodeFilesTest, WithoutAnAddressTableThereAreNoNodeFiles) {
  AddNode(engine.live.AddIp(10, 0, 0, 1), 2);
  engine.Fail("IStatsContext::GetAddressTable", 1, S_FALSE);  // no failure, and no table
  EXPECT_THAT(Reported().folder.Names(), ElementsAre("Summary Statistics.csv"));
}

TEST_F(NodeFilesTest, FailingQueryEndsItsFileAndKeepsTheRowsBefore) {
  for (int i = 1; i <= 5; ++i) AddNode(engine.live.AddIp(10, 0, 0, static_cast<std::uint8_t>(i)), 1);
  AddNode(engine.live.AddPhysical(0x020000000001), 2);
  SwitchColumnsOff();
  engine.Fail("INodeStats::FindByAddress", 3, E_OUTOFMEMORY);
  EXPECT_EQ(Written(kIpFile).size(), 3U);
  EXPECT_EQ(FileLines("Node Statistics-Physical.csv").size(), 2U) << "the next file is still written";
  EXPECT_EQ(FileStatus(kIpFile), E_OUTOFMEMORY);
  const auto report = std::ranges::find(engine.files, E_OUTOFMEMORY, &ScriptedEngine::FileReport::status);
  EXPECT_EQ(report->rows, 2U);
}

TEST_F(NodeFilesTest, RowsWithinARowThatFailsAreNotLeftInPieces) {
  for (int i = 1; i <= 3; ++i) AddNode(engine.live.AddIp(10, 0, 0, static_cast<std::uint8_t>(i)), 1);
  SwitchColumnsOff();
  engine.Fail("IAddressNameService::AppendAddressText", 2, E_FAIL);
  EXPECT_THAT(Written(kIpFile), ElementsAre(testing::_, std::string(kSaved) + ",10.0.0.1,1,0"));
}

}  // namespace
}  // namespace orvo::test

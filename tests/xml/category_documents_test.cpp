// The summary, the nodes and the protocols: whole documents, and what a failure leaves.

#include <gmock/gmock.h>

#include "tests/xml/xml_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr Guid kGroupA = "00000000-0000-0000-0000-00000000000A"_guid;
constexpr Guid kGroupB = "00000000-0000-0000-0000-00000000000B"_guid;
constexpr Guid kNoValue = "00000000-0000-0000-0000-00000000000C"_guid;

class CategoryDocumentsTest : public XmlReportTest {
 protected:
  CategoryDocumentsTest() { Switch(kSwitchOutputGraphs, 0); }

  void AddNode() {
    NodeEntry node;
    node.address = engine.live.AddIp(10, 0, 0, 1);
    node.first_time_sent = Moment(-60);
    node.last_time_sent = Moment(-50);
    node.packets_sent = 1;
    node.bytes_sent = 250;
    node.packets_received = 3;
    node.bytes_received = 500;
    node.broadcast_packets = 5;
    node.broadcast_bytes = 6;
    node.multicast_packets = 7;
    node.multicast_bytes = 8;
    node.min_size_sent = 60;
    node.max_size_sent = 65535;
    engine.live.nodes.push_back(node);
  }
  void OnlyIp() {
    SwitchOff(
        {kSwitchNodeTypePhysical, kSwitchNodeTypeIPv6, kSwitchNodeTypeDEC, kSwitchNodeTypeApple, kSwitchNodeTypeIPX});
  }
};

TEST_F(CategoryDocumentsTest, Nodes) {
  AddNode();
  OnlyIp();
  Switch(kSwitchNodeTypeIPX, 7);
  EXPECT_EQ(Reported().Brief("StatsReport.xml", {"NodeStatistics"}), Items(R"(
  NodeStatistics Version=2.0 {
    Summary { TimeSaved=11/22/2026 14:05:09; Packets=10; Bytes=1000; NodeCount=1 }
    Stats {
      Type Name=IP {
        NodeStat { Addr=10.0.0.1; FirstTimeSent=11/22/2026 14:04:09; LastTimeSent=11/22/2026 14:04:19;
            FirstTimeReceived=; LastTimeReceived=; PacketsSent=1; BytesSent=250; PctBytesSent=0.250000;
            PacketsReceived=3; BytesReceived=500; PctBytesReceived=0.500000; BroadcastPackets=5; BroadcastBytes=6;
            MulticastPackets=7; MulticastBytes=8; MinSizeSent=60; MaxSizeSent=; MinSizeReceived=; MaxSizeReceived=0 } }
      Type Name=IPX } })"));
  SwitchOff({kSwitchNodePackets, kSwitchNodeFirstTime, kSwitchNodeMaxSize});
  EXPECT_THAT(Reported().Children("StatsReport.xml", {"NodeStatistics", "Stats", "Type", "NodeStat"}),
              ElementsAre("Addr", "LastTimeSent", "LastTimeReceived", "BytesSent", "PctBytesSent", "BytesReceived",
                          "PctBytesReceived", "BroadcastPackets", "BroadcastBytes", "MulticastPackets",
                          "MulticastBytes", "MinSizeSent", "MinSizeReceived"));
}

TEST_F(CategoryDocumentsTest, NodesOfTheReportBeforeMoveIntoTheHistory) {
  AddNode();
  OnlyIp();
  EXPECT_FALSE(Reported().folder.Has("NodeStatistics.xml"));
  const std::string before = Brief("StatsReport.xml", {"NodeStatistics", "Stats"});
  engine.live.missing = {kNodeCategory.identifier};
  EXPECT_THAT(Reported().Sections(), Not(testing::Contains("NodeStatistics")))
      << "moved away, and nothing to put there";
  EXPECT_THAT(Children("NodeStatistics.xml", {}), ElementsAre("History"));
  EXPECT_EQ(Brief("NodeStatistics.xml", {"History", "Stats"}), before);
  EXPECT_THAT(Children("NodeStatistics.xml", {"History"}), ElementsAre("Summary", "Stats"));

  engine.live.missing = {};
  ASSERT_EQ(Output(), S_OK);
  engine.Fail("INodeStats::FindByAddress", 1, E_OUTOFMEMORY);
  EXPECT_EQ(Reported().Children("NodeStatistics.xml", {}).size(), 2U) << "what was moved is saved";
  EXPECT_THAT(Sections(), Not(testing::Contains("NodeStatistics")));
  EXPECT_EQ(engine.files.at(engine.files.size() - 4).status, E_OUTOFMEMORY);

  ASSERT_EQ(Output(), S_OK);
  std::filesystem::remove(folder.Path("NodeStatistics.xml"));
  std::filesystem::create_directory(folder.Path("NodeStatistics.xml"));
  ASSERT_EQ(Output(), S_OK);
  EXPECT_TRUE(Failed(FileStatus("NodeStatistics.xml"))) << "which file it was is told";
}

TEST_F(CategoryDocumentsTest, Protocols) {
  engine.protocol_tree = {{1, {u"Ethernet", 0}}, {2, {u"Switch", 1}}, {3, {u"IP", 1}},  {4, {u"TCP", 3}},
                          {5, {u"", 4}},         {6, {u"", 5}},       {7, {u"Deep", 6}}};
  auto add = [&](std::uint32_t key) { engine.live.protocols.push_back({.key = key, .packets = 5, .bytes = 250}); };
  add(engine.live.AddProtocol(1));
  add(engine.live.AddProtocol(4));
  add(engine.live.AddProtocol(7));  // two levels without a name leave a gap
  add(engine.live.AddIp(10, 0, 0, 1));
  add(4711);
  EXPECT_EQ(Reported().Brief("StatsReport.xml", {"ProtocolStatistics"}), Items(R"(
  ProtocolStatistics Version=2.0 {
    Summary { TimeSaved=11/22/2026 14:05:09; Packets=10; Bytes=1000; ProtocolCount=5 }
    Stats {
      ProtoStat Protocol=Ethernet { Name=Ethernet; Path=Ethernet; Packets=5; Bytes=250; PctBytes=0.250000 }
      ProtoStat Protocol=. . TCP { Name=TCP; Path=Ethernet\IP\TCP; Packets=5; Bytes=250; PctBytes=0.250000 }
      ProtoStat Protocol=10.0.0.1 { Name=10.0.0.1; Path=; Packets=5; Bytes=250; PctBytes=0.250000 } } })"));
  engine.at_snapshot = engine.live;
  engine.at_snapshot->total_bytes = 500;
  Switch(kSwitchProtoPackets, 0);
  EXPECT_THAT(Reported().Children("ProtocolStatistics.xml", {}), ElementsAre("History", "History"));
  EXPECT_THAT(folder.Read("ProtocolStatistics.xml"), HasSubstr("<PctBytes>0.500000</PctBytes>"))
      << "against the totals of the snapshot";
  EXPECT_THAT(Sections(), ElementsAre("NodeStatistics", "ProtocolStatistics", "SummaryStatistics"));
}

TEST_F(CategoryDocumentsTest, AFailingHistoryLeavesTheEntryOfTheIndex) {
  engine.protocol_tree = {{1, {u"Ethernet", 0}}};
  engine.live.protocols.push_back({.key = engine.live.AddProtocol(1)});
  Switch(kSwitchOutputNodeStats, 0);
  engine.Fail("IProtocolNameService::AppendName", 2, E_FAIL);  // the first is the index's
  EXPECT_THAT(Reported().Sections(), ElementsAre("ProtocolStatistics", "SummaryStatistics"));
  EXPECT_FALSE(folder.Has("ProtocolStatistics.xml"));
  EXPECT_EQ(FileStatus("ProtocolStatistics.xml"), E_FAIL);
}

TEST_F(CategoryDocumentsTest, Summary) {
  engine.live.summary = {
      {kStatFirstGroup, kGroupA, u"", {.kind = kSummaryNone}},
      {kStatStartDate, kGroupA, u"Start Date", {kSummaryDate, Moment(-60), 0}},
      {kStatStartTime, kGroupA, u"Start Time", {kSummaryTime, Moment(-60), 0}},
      {kStatDuration, kGroupA, u"Duration", {kSummaryDuration, 20'000'000'000, 0}},
      {kNoValue, kGroupB, u"Absent", {.kind = kSummaryNone}},
      {kStatTotalPackets, kGroupB, u"Total Packets", {kSummaryPacketsAndBytes, 8, 800}},
      {kStatTotalBytes, kGroupA, u"Total Bytes", {kSummaryBytes, 800, 0}},
  };
  engine.live.group_names = {{kGroupA, u"General"}, {kGroupB, u"Network"}};
  EXPECT_EQ(Reported().Brief("StatsReport.xml", {"SummaryStatistics"}), Items(R"(
  SummaryStatistics Version=2.0 {
    Summary { TimeSaved=11/22/2026 14:05:09; StartDate=11/22/2026; StartTime=14:04:09; Duration=00:00:20 }
    Stats {
      Snapshot Name=Current {
        Group Name=General {
          SummaryStat { Name=Start Date; PacketsValue=; BytesValue=; PctOfPkts=; PctOfBytes=; PktsPerSec=;
              BytesPerSec=; Values=11/22/2026 }
          SummaryStat { Name=Start Time; PacketsValue=; BytesValue=; PctOfPkts=; PctOfBytes=; PktsPerSec=;
              BytesPerSec=; Values=14:04:09 }
          SummaryStat { Name=Duration; PacketsValue=; BytesValue=; PctOfPkts=; PctOfBytes=; PktsPerSec=;
              BytesPerSec=; Values=00:00:20 } }
        Group Name=Network {
          SummaryStat { Name=Total Packets; PacketsValue=8; PctOfPkts=100.000; PktsPerSec=0.400; BytesValue=800;
              PctOfBytes=100.000; BytesPerSec=40.000; Values= } }
        Group Name=General {
          SummaryStat { Name=Total Bytes; BytesValue=800; PctOfBytes=100.000; BytesPerSec=40.000; PacketsValue=;
              PctOfPkts=; PktsPerSec=; Values= } } } } })"));
  EXPECT_THAT(folder.Read("SummaryStatistics.xml"), HasSubstr("<Snapshot Time=\"11/22/2026 14:05:09\">"));

  ASSERT_EQ(OutputLive(), S_OK);  // without a site: no rates
  EXPECT_THAT(folder.Read("StatsReport.xml"), Not(HasSubstr("PerSec")));
  EXPECT_EQ(Children("SummaryStatistics.xml", {}).size(), 1U) << "a live report has no history";
  EXPECT_EQ(Reported().Children("SummaryStatistics.xml", {}).size(), 1U) << "nor has any report after it";
}

TEST_F(CategoryDocumentsTest, ASummaryOfNothingHasNoPercentagesAndRates) {
  engine.live.total_packets = engine.live.total_bytes = 0;
  engine.live.summary = {{kStatTotalPackets, kGroupA, u"Total Packets", {kSummaryPacketsAndBytes, 0, 800}}};
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Part("StatsReport.xml", {"SummaryStatistics", "Stats"}), HasSubstr(R"(
        <PacketsValue>0</PacketsValue>
        <PctOfPkts />
        <PktsPerSec />
        <BytesValue>800</BytesValue>
        <PctOfBytes />
        <BytesPerSec />
        <Values />
)"));
}

}  // namespace
}  // namespace orvo::test

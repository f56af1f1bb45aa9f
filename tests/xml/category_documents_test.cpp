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
    for (std::uint32_t other :
         {kSwitchNodeTypePhysical, kSwitchNodeTypeIPv6, kSwitchNodeTypeDEC, kSwitchNodeTypeApple, kSwitchNodeTypeIPX}) {
      Switch(other, 0);
    }
  }
};

TEST_F(CategoryDocumentsTest, Nodes) {
  AddNode();
  OnlyIp();
  Switch(kSwitchNodeTypeIPX, 7);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(Part("StatsReport.xml", {"NodeStatistics"}), R"(<NodeStatistics Version="2.0">
  <Summary>
    <TimeSaved>11/22/2026 14:05:09</TimeSaved>
    <Packets>10</Packets>
    <Bytes>1000</Bytes>
    <NodeCount>1</NodeCount>
  </Summary>
  <Stats>
    <Type Name="IP">
      <NodeStat>
        <Addr>10.0.0.1</Addr>
        <FirstTimeSent>11/22/2026 14:04:09</FirstTimeSent>
        <LastTimeSent>11/22/2026 14:04:19</LastTimeSent>
        <FirstTimeReceived />
        <LastTimeReceived />
        <PacketsSent>1</PacketsSent>
        <BytesSent>250</BytesSent>
        <PctBytesSent>0.250000</PctBytesSent>
        <PacketsReceived>3</PacketsReceived>
        <BytesReceived>500</BytesReceived>
        <PctBytesReceived>0.500000</PctBytesReceived>
        <BroadcastPackets>5</BroadcastPackets>
        <BroadcastBytes>6</BroadcastBytes>
        <MulticastPackets>7</MulticastPackets>
        <MulticastBytes>8</MulticastBytes>
        <MinSizeSent>60</MinSizeSent>
        <MaxSizeSent />
        <MinSizeReceived />
        <MaxSizeReceived>0</MaxSizeReceived>
      </NodeStat>
    </Type>
    <Type Name="IPX" />
  </Stats>
</NodeStatistics>
)");
  Switch(kSwitchNodePackets, 0);
  Switch(kSwitchNodeFirstTime, 0);
  Switch(kSwitchNodeMaxSize, 0);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Children("StatsReport.xml", {"NodeStatistics", "Stats", "Type", "NodeStat"}),
              ElementsAre("Addr", "LastTimeSent", "LastTimeReceived", "BytesSent", "PctBytesSent", "BytesReceived",
                          "PctBytesReceived", "BroadcastPackets", "BroadcastBytes", "MulticastPackets",
                          "MulticastBytes", "MinSizeSent", "MinSizeReceived"));
}

TEST_F(CategoryDocumentsTest, NodesOfTheReportBeforeMoveIntoTheHistory) {
  AddNode();
  OnlyIp();
  ASSERT_EQ(Output(), S_OK);
  EXPECT_FALSE(folder.Has("NodeStatistics.xml"));
  const std::string before = Part("StatsReport.xml", {"NodeStatistics", "Stats"});
  engine.live.missing = {kNodeCategory.identifier};
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Sections(), Not(testing::Contains("NodeStatistics"))) << "moved away, and nothing to put there";
  EXPECT_THAT(Children("NodeStatistics.xml", {}), ElementsAre("History"));
  EXPECT_EQ(Part("NodeStatistics.xml", {"History", "Stats"}), before);
  EXPECT_THAT(Children("NodeStatistics.xml", {"History"}), ElementsAre("Summary", "Stats"));

  engine.live.missing = {};
  ASSERT_EQ(Output(), S_OK);
  engine.Fail("INodeStats::FindByAddress", 1, E_OUTOFMEMORY);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(Children("NodeStatistics.xml", {}).size(), 2U) << "what was moved is saved";
  EXPECT_THAT(Sections(), Not(testing::Contains("NodeStatistics")));
  EXPECT_EQ(engine.files.at(engine.files.size() - 4).status, E_OUTOFMEMORY);
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
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(Part("StatsReport.xml", {"ProtocolStatistics"}), R"(<ProtocolStatistics Version="2.0">
  <Summary>
    <TimeSaved>11/22/2026 14:05:09</TimeSaved>
    <Packets>10</Packets>
    <Bytes>1000</Bytes>
    <ProtocolCount>5</ProtocolCount>
  </Summary>
  <Stats>
    <ProtoStat Protocol="Ethernet">
      <Name>Ethernet</Name>
      <Path>Ethernet</Path>
      <Packets>5</Packets>
      <Bytes>250</Bytes>
      <PctBytes>0.250000</PctBytes>
    </ProtoStat>
    <ProtoStat Protocol=". . TCP">
      <Name>TCP</Name>
      <Path>Ethernet\IP\TCP</Path>
      <Packets>5</Packets>
      <Bytes>250</Bytes>
      <PctBytes>0.250000</PctBytes>
    </ProtoStat>
    <ProtoStat Protocol="10.0.0.1">
      <Name>10.0.0.1</Name>
      <Path />
      <Packets>5</Packets>
      <Bytes>250</Bytes>
      <PctBytes>0.250000</PctBytes>
    </ProtoStat>
  </Stats>
</ProtocolStatistics>
)");
  engine.at_snapshot = engine.live;
  engine.at_snapshot->total_bytes = 500;
  Switch(kSwitchProtoPackets, 0);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Children("ProtocolStatistics.xml", {}), ElementsAre("History", "History"));
  EXPECT_THAT(folder.Read("ProtocolStatistics.xml"), HasSubstr("<PctBytes>0.500000</PctBytes>"))
      << "against the totals of the snapshot";
  EXPECT_THAT(Sections(), ElementsAre("NodeStatistics", "ProtocolStatistics", "SummaryStatistics"));
}

TEST_F(CategoryDocumentsTest, AFailingHistoryLeavesTheEntryOfTheIndex) {
  engine.protocol_tree = {{1, {u"Ethernet", 0}}};
  engine.live.protocols.push_back({.key = engine.live.AddProtocol(1)});
  Switch(kSwitchOutputNodeStats, 0);
  engine.Fail("IProtocolNameService::AppendName", 2, E_FAIL);  // the first is the index's
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Sections(), ElementsAre("ProtocolStatistics", "SummaryStatistics"));
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
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(Part("StatsReport.xml", {"SummaryStatistics"}), R"(<SummaryStatistics Version="2.0">
  <Summary>
    <TimeSaved>11/22/2026 14:05:09</TimeSaved>
    <StartDate>11/22/2026</StartDate>
    <StartTime>14:04:09</StartTime>
    <Duration>00:00:20</Duration>
  </Summary>
  <Stats>
    <Snapshot Name="Current">
      <Group Name="General">
        <SummaryStat>
          <Name>Start Date</Name>
          <PacketsValue />
          <BytesValue />
          <PctOfPkts />
          <PctOfBytes />
          <PktsPerSec />
          <BytesPerSec />
          <Values>11/22/2026</Values>
        </SummaryStat>
        <SummaryStat>
          <Name>Start Time</Name>
          <PacketsValue />
          <BytesValue />
          <PctOfPkts />
          <PctOfBytes />
          <PktsPerSec />
          <BytesPerSec />
          <Values>14:04:09</Values>
        </SummaryStat>
        <SummaryStat>
          <Name>Duration</Name>
          <PacketsValue />
          <BytesValue />
          <PctOfPkts />
          <PctOfBytes />
          <PktsPerSec />
          <BytesPerSec />
          <Values>00:00:20</Values>
        </SummaryStat>
      </Group>
      <Group Name="Network">
        <SummaryStat>
          <Name>Total Packets</Name>
          <PacketsValue>8</PacketsValue>
          <PctOfPkts>100.000</PctOfPkts>
          <PktsPerSec>0.400</PktsPerSec>
          <BytesValue>800</BytesValue>
          <PctOfBytes>100.000</PctOfBytes>
          <BytesPerSec>40.000</BytesPerSec>
          <Values />
        </SummaryStat>
      </Group>
      <Group Name="General">
        <SummaryStat>
          <Name>Total Bytes</Name>
          <BytesValue>800</BytesValue>
          <PctOfBytes>100.000</PctOfBytes>
          <BytesPerSec>40.000</BytesPerSec>
          <PacketsValue />
          <PctOfPkts />
          <PktsPerSec />
          <Values />
        </SummaryStat>
      </Group>
    </Snapshot>
  </Stats>
</SummaryStatistics>
)");
  EXPECT_THAT(folder.Read("SummaryStatistics.xml"), HasSubstr("<Snapshot Time=\"11/22/2026 14:05:09\">"));

  ASSERT_EQ(OutputLive(), S_OK);  // without a site: no rates
  EXPECT_THAT(folder.Read("StatsReport.xml"), Not(HasSubstr("PerSec")));
  EXPECT_EQ(Children("SummaryStatistics.xml", {}).size(), 1U) << "a live report has no history";
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(Children("SummaryStatistics.xml", {}).size(), 1U) << "nor has any report after it";
}

}  // namespace
}  // namespace orvo::test

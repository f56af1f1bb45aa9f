// Conversations and the hierarchy of nodes: grouped and flat, and what makes them fail.

#include <gmock/gmock.h>

#include "tests/xml/xml_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kFile = "ConversationStatistics.xml";
constexpr const char* kHierarchyFile = "HierarchicalNodeStatistics.xml";

class ConversationDocumentTest : public XmlReportTest {
 protected:
  ConversationDocumentTest() {
    SwitchOff({kSwitchOutputGraphs, kSwitchOutputProtocolStats});
    engine.live.missing = {kSummaryCategory.identifier};
    engine.live.total_bytes = 120;
    engine.protocol_tree = {{1, {u"UDP", 0}}};
    one_ = AddNode(1);
    two_ = AddNode(2);
    protocol_ = engine.live.AddProtocol(1);
    engine.live.protocols.push_back({.key = protocol_, .packets = 6, .bytes = 80});
  }

  std::uint32_t AddNode(std::uint8_t last) {
    NodeEntry node;
    node.address = engine.live.AddIp(10, 0, 0, last);
    node.bytes_sent = 100;
    node.bytes_received = 200;
    engine.live.nodes.push_back(node);
    return node.address;
  }
  void Talk(std::uint32_t source, std::uint32_t destination, std::uint64_t bytes) {
    engine.live.conversations.push_back(
        {.ends = {.source = source, .destination = destination, .protocol = protocol_}, .packets = 2, .bytes = bytes});
  }
  /// Leaves the families of IP alone.
  void OnlyIp() {
    SwitchOff(
        {kSwitchNodeTypePhysical, kSwitchNodeTypeIPv6, kSwitchNodeTypeDEC, kSwitchNodeTypeApple, kSwitchNodeTypeIPX});
  }

  std::uint32_t one_, two_, protocol_;
};

TEST_F(ConversationDocumentTest, GroupsByTheTextOfTheSource) {
  OnlyIp();
  Talk(one_, two_, 10);
  Talk(two_, one_, 50);
  Talk(one_, one_, 20);
  Talk(engine.live.AddPhysical(0x020000000001), two_, 5);  // of another family
  const std::uint32_t namesake = AddNode(3);
  engine.names[u"10.0.0.3"] = u"10.0.0.1";
  Talk(namesake, two_, 30);
  EXPECT_EQ(Reported().Brief(kFile, {}), Items(R"(
  ConversationStatistics Version=1.0 {
    Summary { TimeSaved=11/22/2026 14:05:09; Packets=10; Bytes=120; NodeCount=3; ConvoCount=4 }
    Stats {
      Type Name=IP {
        SourceAddress Name=10.0.0.1 {
          ConversationStat { Bytes=10; Packets=2; PctBytesSent=0.100000; DestinationAddress=10.0.0.2;
              PctBytesReceived=0.050000; Protocol=UDP; PctBytesProtocol=0.125000 }
          ConversationStat { Bytes=20; Packets=2; PctBytesSent=0.200000; DestinationAddress=10.0.0.1;
              PctBytesReceived=0.100000; Protocol=UDP; PctBytesProtocol=0.250000 }
          ConversationStat { Bytes=30; Packets=2; PctBytesSent=0.300000; DestinationAddress=10.0.0.2;
              PctBytesReceived=0.150000; Protocol=UDP; PctBytesProtocol=0.375000 }
          TotalPctBytesSent=0.500000 }
        SourceAddress Name=10.0.0.2 {
          ConversationStat { Bytes=50; Packets=2; PctBytesSent=0.500000; DestinationAddress=10.0.0.1;
              PctBytesReceived=0.250000; Protocol=UDP; PctBytesProtocol=0.625000 }
          TotalPctBytesSent=0.416667 } } } })"));
}

TEST_F(ConversationDocumentTest, AnEndThatIsNoNodeFailsTheGroupedDocument) {
  folder.Write(kFile, "earlier");
  Talk(one_, engine.live.AddIp(10, 0, 0, 9), 10);
  EXPECT_EQ(Reported().folder.Read(kFile), "earlier");
  EXPECT_EQ(FileStatus(kFile), E_FAIL);
  EXPECT_THAT(Sections(), ElementsAre("NodeStatistics"));
}

TEST_F(ConversationDocumentTest, ManyConversationsStayFlat) {
  OnlyIp();
  for (int i = 0; i < 5000; ++i) Talk(one_, two_, 1);
  EXPECT_THAT(Reported().folder.Read(kFile), HasSubstr("<ConversationStatistics Version=\"1.0\">"));
  EXPECT_THAT(Children(kFile, {"Stats", "Type"}), ElementsAre("SourceAddress"));
  Talk(one_, engine.live.AddIp(10, 0, 0, 9), 10);
  EXPECT_THAT(Reported().folder.Read(kFile), HasSubstr("<ConversationStatistics Version=\"1.1\">"));
  EXPECT_EQ(Children(kFile, {"Stats", "Type"}).size(), 5001U);
  EXPECT_THAT(Children(kFile, {"Stats", "Type", "ConversationStat"}),
              ElementsAre("Bytes", "Packets", "SourceAddress", "PctBytesSent", "DestinationAddress", "PctBytesReceived",
                          "Protocol", "PctBytesProtocol"));
}

TEST_F(ConversationDocumentTest, ABitInCommonOfTwoSwitchesOutweighsItsOwn) {
  const struct {
    std::int32_t additional_node, conversations_only, details;
    bool written;
  } cases[] = {{1, 1, 0, true}, {3, 2, 0, true}, {1, 2, 0, false}, {1, 0, 0, false}, {0, 1, 1, true}};
  for (const auto& one : cases) {
    preferences->SetDefaults();
    Switch(kSwitchOutputGraphs, 0);
    Switch(kSwitchOutputAdditionalNode, one.additional_node);
    Switch(kSwitchOutputConversationsOnly, one.conversations_only);
    Switch(kSwitchOutputNodeDetails, one.details);
    std::filesystem::remove(folder.Path(kFile));
    EXPECT_EQ(Reported().folder.Has(kFile), one.written)
        << one.additional_node << one.conversations_only << one.details;
  }
}

TEST_F(ConversationDocumentTest, MissingTablesSkipTheDocument) {
  for (const Guid& category :
       {kProtocolCategory.identifier, kConversationCategory.identifier, kNodeCategory.identifier}) {
    engine.live.missing = {kSummaryCategory.identifier, category};
    Switch(kSwitchOutputConversationsOnly, 1);
    EXPECT_FALSE(Reported().folder.Has(kFile));
    EXPECT_EQ(FileStatus(kFile), S_FALSE) << "missing is no failure";
  }
}

TEST_F(ConversationDocumentTest, Hierarchy) {
  const std::uint32_t physical = engine.live.AddPhysical(0x020000000001);
  engine.live.hierarchy = {
      {.address = physical, .parent = kNoAddress, .packets_sent = 99},
      {.address = physical,
       .parent = one_,
       .packets_sent = 1,
       .bytes_sent = 30,
       .packets_received = 2,
       .bytes_received = 60},
      {.address = 4711, .parent = two_, .packets_sent = 5},
      {.address = physical, .parent = two_},
  };
  EXPECT_EQ(Reported().Brief(kHierarchyFile, {}), Items(R"(
  HierarchicalNodeStatistics Version=2.0 {
    Summary { TimeSaved=11/22/2026 14:05:09; Packets=10; Bytes=120 }
    Stats {
      PhysicalAddress Address=2.0.0.0.0.1 {
        NodeStat { LogicalAddress=10.0.0.1; Bytes=90; Packets=3; PacketsReceived=2; BytesReceived=60;
            PctBytesReceived=0.500000; PctBytesSent=0.250000; BytesSent=30; PacketsSent=1 }
        NodeStat { LogicalAddress=10.0.0.2; Bytes=0; Packets=0; PacketsReceived=0; BytesReceived=0;
            PctBytesReceived=0.000000; PctBytesSent=0.000000; BytesSent=0; PacketsSent=0 } }
      PhysicalAddress Address= {
        NodeStat { LogicalAddress=10.0.0.2; Bytes=0; Packets=5; PacketsReceived=0; BytesReceived=0;
            PctBytesReceived=0.000000; PctBytesSent=0.000000; BytesSent=0; PacketsSent=5 } } } })"));

  engine.live.hierarchy.resize(10001, engine.live.hierarchy[1]);
  EXPECT_THAT(Reported().folder.Read(kHierarchyFile), HasSubstr("<HierarchicalNodeStatistics Version=\"2.1\">"));
  EXPECT_THAT(Children(kHierarchyFile, {"Stats", "NodeStat"}),
              ElementsAre("PhysicalAddress", "LogicalAddress", "Packets", "Bytes", "PacketsReceived", "BytesReceived",
                          "PctBytesReceived", "PacketsSent", "BytesSent", "PctBytesSent"));
  const std::string before = folder.Read(kHierarchyFile);
  engine.live.hierarchy.resize(1);  // nothing to show
  EXPECT_EQ(Reported().folder.Read(kHierarchyFile), before);
}

}  // namespace
}  // namespace orvo::test

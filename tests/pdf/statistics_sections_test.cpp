// The sections of the PDF report that show statistics: which rows they print, where, and in which words.

#include <bit>
#include <filesystem>

#include "tests/pdf/pdf_report_fixture.h"

namespace orvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr Guid kGroup = "11111111-0000-0000-0000-000000000001"_guid;
constexpr Guid kOtherGroup = "11111111-0000-0000-0000-000000000002"_guid;

class SummarySectionTest : public PdfReportTest {
 protected:
  SummarySectionTest() {
    engine.live.group_names = {{kGroup, u"General"}, {kOtherGroup, u"Errors"}};
    engine.live.total_packets = 300;
  }

  void Add(const char16_t* name, SummaryKind kind, std::uint64_t first, std::uint64_t second = 0,
           const Guid& group = kGroup) {
    Guid identifier = kGroup;
    identifier.data1 = static_cast<std::uint32_t>(engine.live.summary.size() + 1);
    engine.live.summary.push_back({identifier, group, name, {kind, first, second}});
  }
  void AddMany(int count, const Guid& group = kGroup) {
    for (int i = 0; i < count; ++i) Add(u"Filler", kSummaryInteger, 1, 0, group);
  }
  std::vector<Page> PrintSummary() { return Print("Summary Statistics"); }
};

TEST_F(SummarySectionTest, EveryKindHasItsCells) {
  Add(u"Date", kSummaryDate, Moment());
  Add(u"Time", kSummaryTime, Moment());
  Add(u"Duration", kSummaryDuration, 183'845'250'000'000);
  Add(u"Packets", kSummaryPackets, 100);
  Add(u"Bytes", kSummaryBytes, 1000, 9);
  Add(u"Both", kSummaryPacketsAndBytes, 3, 333);
  Add(u"Integer", kSummaryInteger, 18446744073709551615U);
  Add(u"Real", kSummaryReal, std::bit_cast<std::uint64_t>(-1234.5));
  Add(u"None", kSummaryNone, 1);
  Add(u"Unknown", static_cast<SummaryKind>(9), 1);
  // More than a 64-bit count holds when it is multiplied by 100, and more digits than single precision keeps.
  Add(u"Huge", kSummaryPackets, 0x8000000000000000U);
  Add(u"A name that is longer than forty-five characters", kSummaryInteger, 1);
  EXPECT_THAT(
      PrintSummary(),
      ElementsAre(ElementsAre(
          "791 50:Summary Statistics: Reported 11/22/2026 14:05:09",
          "761 50:*Name 280:*Bytes 350:*Packets 420:*Pct of 490:*Pct of", "749 420:*Bytes 490:*Packets",
          "725 50:Group: General", "701 50:Date 280:11/22/2026 350:11/22/2026 420:11/22/2026 490:11/22/2026",
          "689 # 50:Time 280:14:05:09 350:14:05:09 420:14:05:09 490:14:05:09",
          "677 50:Duration 280:2d 03:04:05 350:2d 03:04:05 420:2d 03:04:05 490:2d 03:04:05",
          "665 # 50:Packets 280:N/A 350:100 420:N/A 490:33.333", "653 50:Bytes 280:1000 350:N/A 420:100.000 490:N/A",
          "641 # 50:Both 280:333 350:3 420:33.300 490:1.000",
          "629 50:Integer 280:18446744073709551615 350:18446744073709551615 420:18446744073709551615 "
          "490:18446744073709551615",
          "617 # 50:Real 280:-1,234.500 350:-1,234.500 420:-1,234.500 490:-1,234.500", "605 50:Unknown",
          "593 # 50:Huge 280:N/A 350:9223372036854775808 420:N/A 490:3,074,457,437,244,227,584.000",
          "581 50:A name that is longer than forty-five char... 280:1 350:1 420:1 490:1")));
}

TEST_F(SummarySectionTest, GroupsAreNamedAboveTheirRowsAndOnEveryPage) {
  AddMany(3);
  AddMany(2, kOtherGroup);
  AddMany(60);
  const std::vector<Page> pages = PrintSummary();
  ASSERT_THAT(pages, SizeIs(2));
  EXPECT_THAT(Rows(pages[0]),
              testing::IsSupersetOf({"725 50:Group: General", "701 50:Filler 280:1 350:1 420:1 490:1",
                                     "641 50:Group: Errors", "617 # 50:Filler 280:1 350:1 420:1 490:1",
                                     "569 50:Group: General", "545 # 50:Filler 280:1 350:1 420:1 490:1"}));
  EXPECT_THAT(pages[0].back(), HasSubstr("77 "));
  EXPECT_EQ(Rows(pages[1]).at(0), "725 50:Group: General");
  EXPECT_THAT(Rows(pages[1]).at(1), HasSubstr("701 # ")) << "the shades run on";
  EXPECT_THAT(PdfOutlineOf(Report()), Contains("    Summary 2"));
}

TEST_F(SummarySectionTest, AGroupNeedsNineRowsBelowIt) {
  // The line of the first group stands at 726, its rows from 702 on; the next group's lies 24 points below the last.
  for (const auto& [rows, height] : {std::pair(47, "113"), std::pair(48, "725")}) {
    engine.live.summary.clear();
    AddMany(rows);
    AddMany(1, kOtherGroup);
    const std::vector<Page> pages = PrintSummary();
    EXPECT_THAT(pages.back(), Contains(std::string(height) + " 50:Group: Errors")) << rows;
    EXPECT_EQ(pages.size(), rows == 47 ? 1U : 2U);
  }
}

TEST_F(SummarySectionTest, NamesComeFromTheMapAndQueriesThatFailSkipTheirStatistic) {
  const std::filesystem::path before = std::filesystem::current_path();
  folder.Write("StatMap.xml", "<map><stat id='{00000001-0000-0000-0000-000000000001}' name='Mapped'/></map>");
  std::filesystem::current_path(folder.Path());
  Guid mapped;
  mapped = "00000001-0000-0000-0000-000000000001"_guid;
  engine.live.summary.push_back({mapped, mapped, u"", {kSummaryInteger, 5}});
  Add(u"Second", kSummaryInteger, 2);
  engine.at_snapshot = engine.live;
  engine.live.summary.clear();  // the section reads the snapshot
  EXPECT_THAT(Rows(PrintSummary().at(0)),
              ElementsAre("725 50:Group: Mapped", "701 50:Mapped 280:5 350:5 420:5 490:5", "665 50:Group: General",
                          "641 # 50:Second 280:2 350:2 420:2 490:2"));
  for (const auto& [operation, nth] : {std::pair("ISummarySnapshot::GetIdentifier", 1),
                                       {"ISummarySnapshot::GetValue", 4},  // three calls are for the totals
                                       {"ISummarySnapshot::GetParent", 1}}) {
    engine.Fail(operation, nth, E_FAIL);
    EXPECT_THAT(Rows(PrintSummary().at(0)), ElementsAre("725 50:Group: General", HasSubstr("Second"))) << operation;
  }
  engine.at_snapshot->summary.clear();
  EXPECT_THAT(PrintSummary(), IsEmpty());
  engine.at_snapshot->missing = {kSummaryCategory.identifier};
  EXPECT_THAT(PrintSummary(), IsEmpty());
  EXPECT_THAT(PdfOutlineOf(Report()), Not(Contains(HasSubstr("Summary"))));
  std::filesystem::current_path(before);
}

class NodeSectionTest : public PdfReportTest {
 protected:
  void AddNode(std::uint32_t address, std::uint64_t scale) {
    NodeEntry node;
    node.address = address;
    node.bytes_sent = 10 * scale;
    node.bytes_received = 20 * scale;
    node.packets_sent = scale;
    node.packets_received = 2 * scale;
    node.broadcast_bytes = 3 * scale;
    node.multicast_bytes = 4 * scale;
    node.broadcast_packets = 5 * scale;
    node.multicast_packets = 6 * scale;
    engine.live.nodes.push_back(node);
  }
  std::vector<Page> PrintNodes() { return Print("Node Statistics"); }
};

TEST_F(NodeSectionTest, PrintsTwoTables) {
  AddNode(engine.live.AddIp(10, 0, 0, 1), 1);
  engine.live.AddIp(10, 0, 0, 9);  // has no statistics
  AddNode(engine.live.AddPhysical(0x020000000001), 3);
  AddNode(engine.live.AddIp(10, 0, 0, 2), 2'000'000'000);
  engine.names[u"10.0.0.2"] = u"a-name-of-thirty-characters-xx";
  const char* kTitle = "791 50:Node Statistics: Reported 11/22/2026 14:05:09";
  const char* kSecondHeader =
      "761 50:*Address 150:*Bytes 220:*Broadcast 290:*Multicast 360:*Packets 430:*Broadcast "
      "500:*Multicast";
  EXPECT_THAT(
      PrintNodes(),
      ElementsAre(
          ElementsAre(kTitle, "761 50:*Address 150:*Bytes 220:*Bytes 290:*Bytes 360:*Packets 430:*Packets 500:*Packets",
                      "749 220:*Sent 290:*Received 430:*Sent 500:*Received",
                      "725 50:10.0.0.1 150:30 220:10 290:20 360:3 430:1 500:2",
                      "713 # 50:a-name-of-thirt... 150:60000000000 220:20000000000 290:40000000000 360:6000000000 "
                      "430:2000000000 500:4000000000"),
          ElementsAre(kTitle, kSecondHeader, "749 220:*Bytes 290:*Bytes 430:*Packets 500:*Packets",
                      "725 50:10.0.0.1 150:30 220:3 290:4 360:3 430:5 500:6",
                      "713 # 50:a-name-of-thirt... 150:60000000000 220:6000000000 290:8000000000 360:6000000000 "
                      "430:10000000000 500:12000000000")));
  EXPECT_THAT(PdfOutlineOf(Report()),
              ElementsAre("Orvo Engine Report +", "  Dashboard 1", "  Statistics", "    Nodes 2"));
  EXPECT_EQ(Heard().rows, 4U);

  Switch(kSwitchNodePackets, 0);
  const std::vector<Page> pages = PrintNodes();
  EXPECT_EQ(pages.at(0).at(3), "725 50:10.0.0.1 150:30 220:10 290:20 360:3 430:1 500:2");
  EXPECT_EQ(pages.at(1).at(1), kSecondHeader);
  EXPECT_EQ(pages.at(1).at(3), "725 50:10.0.0.1 150:30 220:3 290:4");
}

TEST_F(NodeSectionTest, TheMediumDecidesWhichAddressesAreShown) {
  auto add = [&](AddressType type) {
    AddressRecord record{.valid = 1, .type = type, .length = 1};
    record.bytes[0] = type;
    AddNode(engine.live.Add(record), 1);
  };
  for (AddressType type : {kAddressIp, kAddressPhysical, kAddressTokenRing, kAddressWan, kAddressIpv6}) add(type);
  const struct {
    std::uint32_t type;
    std::uint32_t subtype;
    AddressType shown;
  } cases[] = {{kMediumEthernet, kSubtypeWired, kAddressIp},
               {kMediumEthernet, kSubtype80211b, kAddressPhysical},
               {kMediumEthernet, kSubtype80211bg, kAddressPhysical},
               {kMediumEthernet, 4, kAddressPhysical},
               {kMediumTokenRing, kSubtypeWired, kAddressTokenRing},
               {kMediumTokenRing, 4, kAddressPhysical},
               {kMediumTokenRing, kSubtype80211a, kAddressPhysical},
               {kMediumWan, kSubtypeWired, kAddressWan},
               {kMediumWanFrame, 4, kAddressWan},
               {kMediumWan, kSubtype80211a, kAddressPhysical},
               {7, kSubtypeWired, kAddressPhysical}};
  for (const auto& one : cases) {
    engine.live.medium_type = one.type;
    engine.live.medium_subtype = one.subtype;
    EXPECT_THAT(Rows(PrintNodes().at(0)), ElementsAre(HasSubstr(" 50:" + std::to_string(one.shown) + " 150:30")))
        << one.type << "/" << one.subtype;
  }
}

TEST_F(NodeSectionTest, EndsWhereAQueryFailsAndKeepsWhatIsPrinted) {
  for (std::uint8_t i = 1; i <= 3; ++i) AddNode(engine.live.AddIp(10, 0, 0, i), 1);
  engine.Fail("INodeStats::FindByAddress", 2, kDenied);
  const std::vector<Page> pages = PrintNodes();
  ASSERT_THAT(pages, SizeIs(2)) << "the second table is one of its own";
  EXPECT_THAT(Rows(pages[0]), SizeIs(1));
  EXPECT_THAT(Rows(pages[1]), SizeIs(3));
  EXPECT_EQ(Heard().status, kDenied);
  EXPECT_EQ(Heard().rows, 4U);
  engine.Fail("INodeStats::FindByAddress", 1, E_FAIL);
  EXPECT_THAT(PrintNodes(), IsEmpty()) << "no second table without a first";
  Switch(kSwitchOutputNodeStats, 0);
  EXPECT_THAT(PrintNodes(), IsEmpty());
}

TEST_F(PdfReportTest, ProtocolsAreThoseWithoutAGapAboveThem) {
  engine.protocol_tree = {{1, {u"Top"}}, {2, {u"Middle", 1}}, {3, {u"A leaf with a name of many letters", 2}},
                          {4, {u"", 1}}, {5, {u"", 4}},       {6, {u"Behind a gap", 5}}};
  for (std::uint16_t number = 1; number <= 6; ++number) {
    engine.live.protocols.push_back(
        {.key = engine.live.AddProtocol(number), .packets = number, .bytes = 5'000'000'000U + number});
  }
  engine.live.protocols.push_back({.key = engine.live.AddIp(10, 0, 0, 1), .packets = 1, .bytes = 1});
  engine.live.protocols.push_back({.key = 99, .packets = 1, .bytes = 1});
  engine.live.total_packets = 30;
  engine.live.total_bytes = 10'000'000'000;
  engine.at_snapshot = engine.live;
  engine.live.total_packets = engine.live.total_bytes = 1;  // the section reads the snapshot
  engine.live.protocols.clear();
  EXPECT_THAT(
      Print("Protocol Statistics"),
      ElementsAre(ElementsAre("791 50:Protocol Statistics: Reported 11/22/2026 14:05:09",
                              "761 50:*Name 225:*Bytes 325:*Pct of 395:*Packets 495:*Pct of",
                              "749 325:*Bytes 495:*Packets", "725 50:Top 225:5000000001 325:50.000 395:1 495:3.333",
                              "713 # 50:Middle 225:5000000002 325:50.000 395:2 495:6.667",
                              "701 50:A leaf with a name of m... 225:5000000003 325:50.000 395:3 495:10.000",
                              "689 # 225:5000000004 325:50.000 395:4 495:13.333",
                              "677 225:5000000005 325:50.000 395:5 495:16.667")));
  EXPECT_THAT(PdfOutlineOf(Report()), Contains("    Protocols 2"));
  engine.at_snapshot->total_packets = 0;
  EXPECT_THAT(Print("Protocol Statistics").at(0), Contains(EndsWith("395:1 495:N/A")));
  engine.Fail("IAddressNameService::AppendTypeLabel", 1, E_FAIL);
  EXPECT_THAT(Rows(Print("Protocol Statistics").at(0)), SizeIs(4)) << "without the one that has no name";
  Switch(kSwitchOutputProtocolStats, 0);
  EXPECT_THAT(Print("Protocol Statistics"), IsEmpty());
}

}  // namespace
}  // namespace orvo::test

// The sections of the PDF report that copy analysis tables: expert, voice and video.

#include "tests/pdf/pdf_report_fixture.h"

namespace orvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class AnalysisSectionsTest : public PdfReportTest {
 protected:
  AnalysisSectionsTest() { engine.live.expert.emplace(); }

  ScriptedTable& Table(TableKind kind) { return engine.live.expert->tables[kind]; }
  /// Adds a row whose cells tell their columns: "c0", "c1", ...
  void AddRow(TableKind kind, std::size_t columns) {
    std::vector<std::u16string> row;
    for (std::size_t i = 0; i < columns; ++i) row.push_back(u"c" + Wide(std::to_string(i)));
    Table(kind).rows.push_back(row);
  }
};

TEST_F(AnalysisSectionsTest, EventsHaveTheColorOfTheirSeverity) {
  for (const char16_t* severity : {u"Informational", u"Minor", u"Major", u"Severe", u"Warning", u"severe"}) {
    Table(kTableEventCounts).rows.push_back({u"KEY", u"Network", severity, u"An event", u"7"});
  }
  Table(kTableEventCounts).rows[0][3] = u"An event whose name has more characters than forty-five";
  EXPECT_THAT(
      Print("Expert Event Counts"),
      ElementsAre(ElementsAre(
          "791 50:Expert Event Counts: Reported 11/22/2026 14:05:09",
          "761 50:*Event 270:*Severity 340:*Layer 440:*Events",
          "725 50:An event whose name has more characters th... 270:Informational 340:Network 440:7",
          "713 # 50:An event 270[0 0.8 0]:Minor 340:Network 440:7",
          "701 50:An event 270[1 1 0]:Major 340:Network 440:7", "689 # 50:An event 270[1 0 0]:Severe 340:Network 440:7",
          "677 50:An event 340:Network 440:7", "665 # 50:An event 340:Network 440:7")));
}

TEST_F(AnalysisSectionsTest, FlowsAndApplicationsTakeTheirColumnsByNumber) {
  AddRow(kTableEventCounts, 5);
  AddRow(kTableFlows, 31);
  AddRow(kTableApplications, 21);
  Table(kTableFlows).rows[0][6] = u"a long protocol";
  Table(kTableApplications).rows[0][0] = u"a long application";
  Table(kTableApplications).rows[0][8] = u"123456789ab";  // is as long as it may be
  EXPECT_THAT(Print("Expert Flow Statistics"),
              ElementsAre(ElementsAre(HasSubstr("50:Expert Flow Statistics"),
                                      "761 50:*Flow 120:*Client 220:*Client 270:*Server 370:*Server 420:*Bytes "
                                      "490:*Packets",
                                      "749 50:*ID 120:*Address 220:*Port 270:*Address 370:*Port",
                                      "725 50:c0 120:c1 220:c2 270:c3 370:c4 420:c13 490:c10"),
                          ElementsAre(HasSubstr("50:Expert Flow Statistics"),
                                      "761 50:*Flow 100:*Events 150:*Protocol 220:*Apdex 290:*Sample 340:*Response "
                                      "410:*C->S 480:*S->C",
                                      "749 50:*ID 220:*Score 290:*Count 340:*Time 410:*bps 480:*bps",
                                      "725 50:c0 100:c5 150:a long p... 220:c7 290:c8 340:c22 410:c26 480:c30")));
  EXPECT_THAT(
      PagesTitled("Expert Application Statistics"),
      ElementsAre(ElementsAre(
          HasSubstr("50:Expert Application"),
          "761 50:*Name 120:*Flows 170:*Events 220:*Protocol 290:*Apdex 360:*Sample 410:*Bytes 480:*Packets",
          "749 360:*Count", "725 50:a long a... 120:c6 170:c7 220:123456789ab 290:c9 360:c10 410:c15 480:c12")));
  EXPECT_THAT(Entries(), ElementsAre("  Expert", "    Summary 2", "    Flows 3", "    Applications 5"));
  EXPECT_EQ(Heard().rows, 4U);
  EXPECT_EQ(Heard().status, S_OK);

  const std::pair<std::uint32_t, std::vector<std::string>> cases[] = {
      {kSwitchExpertFlows, {"  Expert", "    Summary 2", "    Applications 3"}},
      {kSwitchExpertApplications, {"  Expert", "    Summary 2"}},
      {kSwitchOutputExpertStats, {}}};
  for (const auto& [off, entries] : cases) {
    Switch(off, 0);
    EXPECT_EQ(Reported().Entries(), entries);
  }
}

TEST_F(AnalysisSectionsTest, ATableThatFailsEndsAlone) {
  for (TableKind kind : {kTableEventCounts, kTableFlows, kTableApplications}) {
    for (int i = 0; i < 3; ++i) AddRow(kind, 31);
  }
  engine.Fail("ITable::GetCell", 6, kDenied);  // in the second row of events
  const std::vector<Page> events = Print("Expert Event Counts");
  ASSERT_THAT(events, SizeIs(1));
  EXPECT_THAT(events[0], Contains("713 # 50:c3")) << "what was drawn before the failure stays";
  EXPECT_THAT(PagesTitled("Expert Flow Statistics"), SizeIs(2));
  EXPECT_EQ(Heard().status, kDenied);
  EXPECT_EQ(Heard().rows, 10U);

  engine.live.expert->tables.erase(kTableFlows);
  EXPECT_THAT(Reported().Entries(), ElementsAre("  Expert", "    Summary 2", "    Applications 3"));
  engine.live.expert->tables.clear();
  EXPECT_THAT(Reported().Entries(), ElementsAre("  Expert")) << "a group stands also when nothing stands below it";
  engine.live.expert->offers_tables = false;
  EXPECT_THAT(Reported().Entries(), IsEmpty());
}

TEST_F(AnalysisSectionsTest, MediaFillFiveTables) {
  Switch(kSwitchOutputExpertStats, 0);
  for (int i = 0; i < 2; ++i) AddRow(kTableMedia, 71);
  std::vector<std::u16string>& row = Table(kTableMedia).rows[0];
  row[1] = row[8] = u"11/22/2026 14:05:09";
  row[26] = u"A protocol of many words";
  row[70] = u"G.711 \u00B5-law and \u00B5 other words";
  EXPECT_THAT(
      Print("Voice & Video Statistics"),
      ElementsAre(
          ElementsAre("791 50:Voice & Video Statistics: Reported 11/22/2026 14:05:09",
                      "761 50:*Flow 120:*Events 190:*Source 290:*Source 360:*Dest 460:*Dest",
                      "749 50:*ID 190:*Addr 290:*Port 360:*Addr 460:*Port",
                      "725 50:c36 120:c7 190:c44 290:c53 360:c48 460:c58",
                      "713 # 50:c36 120:c7 190:c44 290:c53 360:c48 460:c58"),
          ElementsAre(HasSubstr("Voice"), "761 50:*Flow 120:*Start 220:*Finish 320:*Duration 420:*Protocol",
                      "749 50:*ID",
                      "725 50:c36 120:11/22/2026 14... 220:11/22/2026 14... 320:c14 420:A protocol of ...",
                      "713 # 50:c36 120:c1 220:c8 320:c14 420:c26"),
          ElementsAre(HasSubstr("Voice"), "761 50:*Flow 100:*Hops 170:*Packets 240:*Bytes 310:*SSRC 380:*Codec",
                      "749 50:*ID", "725 50:c36 100:c13 170:c19 240:c23 310:c67 380:G.711 u-law and u other...",
                      "713 # 50:c36 100:c13 170:c19 240:c23 310:c67 380:c70"),
          ElementsAre(HasSubstr("Voice"), "761 50:*Flow 120:*Jitter 220:*MOS-LQ 290:*MOS-CQ 360:*MOS-PQ 430:*MOS-NOM",
                      "749 50:*ID", "725 50:c36 120:c59 220:c5 290:c11 360:c18 430:c21",
                      "713 # 50:c36 120:c59 220:c5 290:c11 360:c18 430:c21"),
          ElementsAre(HasSubstr("Voice"),
                      "761 50:*Flow 120:*Packet 190:*R Factor 260:*R Factor 360:*R Factor 430:*R Factor",
                      "749 50:*ID 120:*Loss % 190:*Listening 260:*Conversational 360:*G. 107 430:*Nominal",
                      "689 50:c36 120:c63 190:c25 260:c30 360:c35 430:c41",
                      "677 # 50:c36 120:c63 190:c25 260:c30 360:c35 430:c41")));
  EXPECT_THAT(Entries(), ElementsAre("  Voice & Video", "    Addresses 2", "    Quality Metrics 5"));

  // Every page of the last table has the wider gap.
  for (int i = 0; i < 60; ++i) AddRow(kTableMedia, 71);
  const std::vector<Page> pages = Print("Voice & Video Statistics");
  EXPECT_EQ(pages.size(), 10U);
  EXPECT_THAT(pages.back().at(3), HasSubstr("689 "));
  EXPECT_THAT(pages.front().at(3), HasSubstr("725 "));

  engine.Fail("ITable::GetCell", 1, E_FAIL);
  EXPECT_THAT(Print("Voice & Video Statistics"), SizeIs(8)) << "the first table is without its pages, not the others";
  Table(kTableMedia).rows.clear();
  EXPECT_THAT(Reported().Entries(), IsEmpty());
  AddRow(kTableMedia, 71);
  Switch(kSwitchOutputVoIPOnly, 0);
  EXPECT_THAT(Reported().Entries(), IsEmpty());
}

}  // namespace
}  // namespace orvo::test

// Expert analysis, and voice and video.

#include <gmock/gmock.h>

#include "tests/xml/xml_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class ExpertDocumentsTest : public XmlReportTest {
 protected:
  ExpertDocumentsTest() {
    SwitchOff({kSwitchOutputGraphs, kSwitchOutputNodeStats, kSwitchOutputProtocolStats});
    engine.live.missing = {kSummaryCategory.identifier};
    ScriptedExpert& expert = engine.live.expert.emplace();
    const ScriptedTable table{.columns = {{u"DELAY", u"Delay"}, {u"TEXT", u"A \"title\""}},
                              .rows = {{u"1,234", u"1,234 <b> \x0001\xD800"}}};
    for (std::uint32_t kind : {kTableFlows, kTableApplications, kTableEventCounts, kTableEventLog, kTableMedia}) {
      expert.tables[kind] = table;
    }
  }
};

TEST_F(ExpertDocumentsTest, TablesAreCopiedCellByCell) {
  EXPECT_EQ(Reported().Brief("StatsReport.xml", {}), Items(R"(
  StatsReport {
    ExpertStatistics Version=1.0 {
      FlowStatistics TimeSaved=11/22/2026 14:05:09 {
        Stats { DELAY Name=Delay Value=1234; TEXT Name=A "title" Value=1,234 <b> ?? } }
      ApplicationStatistics TimeSaved=11/22/2026 14:05:09 {
        Stats { DELAY Name=Delay Value=1234; TEXT Name=A "title" Value=1,234 <b> ?? } }
      EventCounts TimeSaved=11/22/2026 14:05:09 {
        Stats { DELAY Name=Delay Value=1234; TEXT Name=A "title" Value=1,234 <b> ?? } } }
    VoIPStatistics Version=1.1 {
      VoIPMediaStatistics TimeSaved=11/22/2026 14:05:09 {
        Stats { TEXT Name=A "title" Value=1,234 <b> ?? } } } })"));
  EXPECT_EQ(Brief("ExpertLog.xml", {}), Items(R"(
  ExpertLog TimeSaved=11/22/2026 14:05:09 {
    Stats { DELAY Name=Delay Value=1234; TEXT Name=A "title" Value=1,234 <b> ?? } })"));
}

TEST_F(ExpertDocumentsTest, TheEventLogHangsOnTheSwitchOfApplications) {
  const std::tuple<std::int32_t, std::int32_t, std::vector<std::string>> cases[] = {
      {0, 0, {"EventCounts"}},
      {0, 1, {"ApplicationStatistics", "EventCounts"}},
      {1, 0, {"FlowStatistics", "EventCounts"}}};
  for (const auto& [flows, applications, sections] : cases) {
    Switch(kSwitchExpertFlows, flows);
    Switch(kSwitchExpertApplications, applications);
    std::filesystem::remove(folder.Path("ExpertLog.xml"));
    EXPECT_EQ(Reported().Children("StatsReport.xml", {"ExpertStatistics"}), sections);
    EXPECT_EQ(folder.Has("ExpertLog.xml"), applications != 0);
  }
}

TEST_F(ExpertDocumentsTest, WhatFailsLeavesWhatWasDone) {
  ASSERT_EQ(Output(), S_OK);
  const std::string log = folder.Read("ExpertLog.xml");
  Switch(kSwitchOutputVoIPOnly, 0);
  engine.Fail("ITableProvider::GetTable", 4, E_FAIL);  // the event log
  EXPECT_THAT(Reported().Sections(), ElementsAre("VoIPStatistics", "ExpertStatistics"));
  EXPECT_EQ(folder.Read("ExpertLog.xml"), log);
  EXPECT_EQ(FileStatus("ExpertLog.xml"), E_FAIL);
  engine.Fail("ITableProvider::GetTable", 2, E_FAIL);
  EXPECT_THAT(Reported().Sections(), ElementsAre("VoIPStatistics")) << "the old entry went first";
  engine.live.expert->offers_tables = false;
  EXPECT_EQ(Reported().FileStatus("StatsReport.xml"), S_OK);
}

TEST_F(ExpertDocumentsTest, VoiceAndVideoShowSomeColumnsAndNoEmptyTable) {
  ScriptedTable& media = engine.live.expert->tables[kTableMedia];
  media = {};
  media.rows.resize(1);
  for (int column = 0; column < 80; ++column) {
    media.columns.push_back({u"C" + Wide(std::to_string(column)), u"Title"});
    media.rows[0].push_back(u"1,2");
  }
  EXPECT_THAT(Reported().Children("StatsReport.xml", {"VoIPStatistics", "VoIPMediaStatistics", "Stats"}),
              ElementsAre("C1", "C5", "C7", "C8", "C11", "C13", "C14", "C18", "C19", "C21", "C23", "C25", "C26", "C30",
                          "C35", "C36", "C41", "C44", "C48", "C53", "C58", "C59", "C63", "C67", "C70"));
  EXPECT_THAT(folder.Read("StatsReport.xml"), HasSubstr("<C1 Name=\"Title\" Value=\"1,2\" />"));
  media.rows.clear();
  EXPECT_THAT(Reported().Sections(), ElementsAre("ExpertStatistics")) << "the old entry is gone as well";
}

}  // namespace
}  // namespace orvo::test

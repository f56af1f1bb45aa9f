#include "text/expert_files.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "platform/class_factory.h"
#include "platform/error.h"
#include "tests/text/text_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr const char* kFlows = "Expert Flow Statistics.csv";
constexpr const char* kApplications = "Expert Application Statistics.csv";
constexpr const char* kEvents = "Expert Event Counts.csv";
constexpr const char* kMedia = "VoIP Media Statistics.csv";
const std::string kSaved = "11/22/2026 14:05:09,";

class ExpertFilesTest : public TextReportTest {
 protected:
  ExpertFilesTest() {
    OnlySection(kSwitchOutputExpertStats);
    engine.live.expert.emplace();
    for (TableKind kind : {kTableFlows, kTableApplications, kTableEventCounts}) {
      table(kind).columns = {{u"A", u"First"}, {u"B", u"Second, with a comma"}};
      table(kind).rows = {{u"1,234", u",x,,y,"}, {u"", u"last"}};
    }
    table(kTableMedia).columns.assign(71, {u"IDENTIFIER", u"Title"});
  }

  ScriptedTable& table(TableKind kind) { return engine.live.expert->tables[kind]; }

  void RemoveFiles() {
    for (const char* file : {kFlows, kApplications, kEvents, kMedia}) std::filesystem::remove(folder.Path(file));
  }

  /// Which of the four files are there: F, A, E and V.
  std::string Files() const {
    const std::pair<const char*, char> files[] = {{kFlows, 'F'}, {kApplications, 'A'}, {kEvents, 'E'}, {kMedia, 'V'}};
    std::string there;
    for (const auto& [file, letter] : files) {
      if (folder.Has(file)) there += letter;
    }
    return there;
  }

  /// The status with which one section ends when it is called by itself.
  Status StatusOf(void (*section)(TextReport&)) {
    ComPtr<IStatsContext> context = engine.Context();
    ComPtr<IProtocolNameService> protocol_names;
    EXPECT_EQ(CreateInstance(kProtocolNameServiceClass, &protocol_names), S_OK);
    ReportUtil util;
    StatisticMap map;
    ReportJob job{.folder = folder.ReportFolder(), .live = context.get(), .statistics = context.get()};
    TextReport report{.job = job,
                      .preferences = *preferences,
                      .util = util,
                      .protocol_names = *protocol_names,
                      .statistic_map = map,
                      .extension = u".csv",
                      .separator = ",",
                      .time_mark = Moment()};
    return Guard([&] { section(report); });
  }
};

TEST_F(ExpertFilesTest, CopiesEveryColumnWithoutCommasInCells) {
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(Files(), "FAE");
  for (const char* file : {kFlows, kApplications, kEvents}) {
    EXPECT_THAT(FileLines(file),
                ElementsAre("Time Saved,First,Second, with a comma,", kSaved + "1234,xy,", kSaved + ",last,"));
  }
  SetFormat(u".txt", u"\t");
  EXPECT_THAT(Reported().FileLines("Expert Event Counts.txt"),
              ElementsAre("Time Saved\tFirst\tSecond, with a comma\t", "11/22/2026 14:05:09\t1234\txy\t",
                          "11/22/2026 14:05:09\t\tlast\t"));
}

TEST_F(ExpertFilesTest, LeavesOutNamesOfEventsAndRenamesTheirSeverity) {
  table(kTableEventCounts).columns = {{u"EVENT_NAME", u"Name"},
                                      {u"EVENT_SEVERITY_MAX", u"Worst"},
                                      {u"event_name", u"Third"},
                                      {u"EVENT_SEVERITY_MAX ", u"Fourth"}};
  table(kTableEventCounts).rows = {{u"a", u"b", u"c", u"d"}};
  EXPECT_THAT(Written(kEvents), ElementsAre("Time Saved,Severity,Third,Fourth,", kSaved + "b,c,d,"));
}

TEST_F(ExpertFilesTest, ATableWithoutRowsLeavesItsHeader) {
  table(kTableFlows).rows.clear();
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Reported().FileLines(kFlows), ElementsAre("Time Saved,First,Second, with a comma,"));
  EXPECT_THAT(FileLines(kEvents), SizeIs(1 + 2 + 2));
}

TEST_F(ExpertFilesTest, SwitchesDecideFlowsAndApplicationsOnly) {
  const struct {
    int section, flows, applications;
    const char* files;
  } cases[] = {{1, 0, 0, "E"}, {1, 0, 1, "AE"}, {1, 1, 0, "FE"}, {0, 1, 1, ""}};
  for (const auto& c : cases) {
    RemoveFiles();
    Switch(kSwitchOutputExpertStats, c.section);
    Switch(kSwitchExpertFlows, c.flows);
    Switch(kSwitchExpertApplications, c.applications);
    ASSERT_EQ(Output(), S_OK);
    EXPECT_EQ(Files(), c.files);
  }
}

TEST_F(ExpertFilesTest, ReadsTheLiveTables) {
  engine.at_snapshot = engine.live;
  table(kTableFlows).rows.resize(1);
  EXPECT_THAT(Written(kFlows), SizeIs(2));
}

TEST_F(ExpertFilesTest, ColumnsThatCannotBeCountedAreNone) {
  engine.Fail("ITable::GetColumnCount", 1, E_FAIL);
  EXPECT_THAT(Written(kFlows), ElementsAre("Time Saved,", kSaved, kSaved));
  EXPECT_EQ(FileStatus(kFlows), S_OK);
}

TEST_F(ExpertFilesTest, RowsThatCannotBeCountedFailTheirFileAlone) {
  engine.Fail("ITable::GetRowCount", 1, DISP_E_OVERFLOW);
  EXPECT_THAT(Written(kFlows), SizeIs(1));
  EXPECT_EQ(FileStatus(kFlows), DISP_E_OVERFLOW);
  EXPECT_THAT(FileLines(kApplications), SizeIs(3));
  EXPECT_THAT(FileLines(kEvents), SizeIs(3));
  engine.Fail("ITable::GetRowCount", 1, DISP_E_OVERFLOW);
  EXPECT_EQ(StatusOf(WriteExpertFiles), S_OK);
}

TEST_F(ExpertFilesTest, EveryOtherFailureEndsTheSectionWhereItIs) {
  const std::tuple<const char*, int, std::size_t> cases[] = {
      {"ITableProvider::GetTable", 2, 3},
      {"ITable::GetCell", 3, 2},
      {"ITable::GetCell", 1, 1},
      {"ITable::GetColumnTitle", 2, 0},
      {"ITable::GetColumnIdentifier", 1, 0},
  };
  for (const auto& [operation, nth, flow_lines] : cases) {
    RemoveFiles();
    engine.Fail(operation, nth, DISP_E_OVERFLOW);
    EXPECT_EQ(StatusOf(WriteExpertFiles), DISP_E_OVERFLOW) << operation;
    EXPECT_EQ(Files(), flow_lines == 0 ? "" : "F") << operation;
    if (flow_lines == 0) continue;
    EXPECT_THAT(FileLines(kFlows), SizeIs(flow_lines)) << operation;
  }
}

TEST_F(ExpertFilesTest, TitlesAreAskedForOnlyByANewFile) {
  ASSERT_EQ(Output(), S_OK);
  engine.Fail("ITable::GetColumnTitle", 1, E_FAIL);
  EXPECT_THAT(Reported().FileLines(kFlows), SizeIs(1 + 2 + 2));
}

TEST_F(ExpertFilesTest, WithoutTablesNothingIsMade) {
  EXPECT_EQ(StatusOf(WriteExpertFiles), S_OK);
  RemoveFiles();
  engine.live.expert->offers_tables = false;
  EXPECT_EQ(StatusOf(WriteExpertFiles), E_POINTER);
  EXPECT_EQ(StatusOf(WriteMediaFile), S_OK) << "its own switch is off";
  Switch(kSwitchOutputVoIPOnly, 1);
  EXPECT_EQ(StatusOf(WriteMediaFile), E_NOINTERFACE);
  engine.live.expert.reset();
  EXPECT_EQ(StatusOf(WriteExpertFiles), S_OK);
  EXPECT_EQ(StatusOf(WriteMediaFile), S_OK);
  EXPECT_EQ(Files(), "");
}

TEST_F(ExpertFilesTest, MediaFailOnTheirOwn) {
  Switch(kSwitchOutputVoIPOnly, 1);
  table(kTableMedia).rows.assign(2, std::vector<std::u16string>(71, u"x"));
  for (TableKind kind : {kTableFlows, kTableApplications, kTableEventCounts}) table(kind).rows.clear();
  const std::tuple<const char*, int, std::size_t> cases[] = {{"ITable::GetCell", 26, 2},
                                                             {"ITable::GetRowCount", 4, 1},
                                                             {"ITable::GetColumnTitle", 7, 0},
                                                             {"ITableProvider::GetTable", 4, 0}};
  for (const auto& [operation, nth, lines] : cases) {
    RemoveFiles();
    engine.Fail(operation, nth, DISP_E_OVERFLOW);
    ASSERT_EQ(Output(), S_OK);
    EXPECT_EQ(Files(), lines == 0 ? "FAE" : "FAEV") << operation;
    if (lines == 0) continue;
    EXPECT_THAT(FileLines(kMedia), SizeIs(lines)) << operation;
    EXPECT_EQ(FileStatus(kMedia), DISP_E_OVERFLOW) << operation;
  }
  // The other way round.
  RemoveFiles();
  engine.Fail("ITableProvider::GetTable", 1, E_FAIL);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(Files(), "V");
}

}  // namespace
}  // namespace orvo::test

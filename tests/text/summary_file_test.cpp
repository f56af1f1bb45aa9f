#include <gmock/gmock.h>

#include <bit>
#include <filesystem>

#include "tests/text/text_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;

constexpr const char* kFile = "Summary Statistics.csv";
constexpr const char* kSaved = "11/22/2026 14:05:09,";
constexpr Guid kGroup = "11111111-0000-0000-0000-000000000001"_guid;

class SummaryFileTest : public TextReportTest {
 protected:
  SummaryFileTest() {
    OnlySection(0xFFFF);
    engine.live.group_names[kGroup] = u"General";
    engine.live.total_packets = 200;
    engine.live.total_bytes = 1000;
    engine.live.duration = 4'000'000'000;
  }

  void Add(const char16_t* name, SummaryKind kind, std::uint64_t first, std::uint64_t second = 0) {
    Guid identifier = kGroup;
    identifier.data1 = static_cast<std::uint32_t>(engine.live.summary.size() + 1);
    engine.live.summary.push_back({identifier, kGroup, name, {kind, first, second}});
  }

  std::vector<std::string> Rows() {
    const std::vector<std::string> lines = Written(kFile);
    return {lines.begin() + 1, lines.end()};
  }
};

TEST_F(SummaryFileTest, EveryKindHasItsColumns) {
  struct {
    std::uint32_t kind;
    std::uint64_t first;
    std::uint64_t second;
    const char* row;  // behind the statistic's name
  } const cases[] = {
      {kSummaryDate, Moment(), 0, ",11/22/2026,11/22/2026,11/22/2026,11/22/2026,11/22/2026,11/22/2026"},
      {kSummaryTime, Moment(), 0, ",14:05:09,14:05:09,14:05:09,14:05:09,14:05:09,14:05:09"},
      {kSummaryDuration, 183'845'250'000'000, 0,
       ",2d 03:04:05,2d 03:04:05,2d 03:04:05,2d 03:04:05,2d 03:04:05,2d 03:04:05"},
      {kSummaryPackets, 50, 9, ",-,50,-,25.000,-,12.500"},
      {kSummaryBytes, 125, 9, ",125,-,12.500,-,31.250,-"},
      {kSummaryPacketsAndBytes, 3, 333, ",333,3,33.300,1.500,83.250,0.750"},
      {kSummaryInteger, 18446744073709551615U, 0,
       ",18446744073709551615,18446744073709551615,18446744073709551615,18446744073709551615,18446744073709551615,"
       "18446744073709551615"},
      {kSummaryReal, std::bit_cast<std::uint64_t>(-2.0005), 0, ",-2.001,-2.001,-2.001,-2.001,-2.001,-2.001"},
      {9, 1, 1, ""},
      // The product with 100 is an unsigned 64-bit one and may wrap around.
      {kSummaryPackets, 0x8000000000000000U, 0, ",-,9223372036854775808,-,0.000,-,2305843009213693952.000"},
  };
  for (const auto& one : cases) {
    engine.live.summary.clear();
    Add(u"Figure", static_cast<SummaryKind>(one.kind), one.first, one.second);
    EXPECT_THAT(Rows(), ElementsAre(kSaved + std::string("General,Figure") + one.row)) << "kind " << one.kind;
  }
}

TEST_F(SummaryFileTest, SwitchesDecideColumnsAndStatisticsWithoutValueLeaveNoRow) {
  Add(u"Nothing", kSummaryNone, 1);
  Add(u"Both", kSummaryPacketsAndBytes, 50, 125);
  EXPECT_EQ(Rows().size(), 1U);
  EXPECT_EQ(FileLines(kFile).at(0),
            "Time Saved,Group,Statistic,Bytes,Packets,PctBytes,PctPackets,BytesPerSec,PktsPerSec");

  const std::uint32_t all[] = {kSwitchSumPackets, kSwitchSumPctBytes, kSwitchSumPctPackets, kSwitchSumBytespSec,
                               kSwitchSumPacketspSec};
  const std::pair<const char*, const char*> shown[] = {{",Packets", ",50"},
                                                       {",PctBytes", ",12.500"},
                                                       {",PctPackets", ",25.000"},
                                                       {",BytesPerSec", ",31.250"},
                                                       {",PktsPerSec", ",12.500"}};
  for (std::size_t on = 0; on < std::size(all); ++on) {
    for (std::size_t i = 0; i < std::size(all); ++i) Switch(all[i], i == on);
    EXPECT_THAT(Rows(), ElementsAre(std::string(kSaved) + "General,Both,125" + shown[on].second));
    EXPECT_EQ(FileLines(kFile).at(0), std::string("Time Saved,Group,Statistic,Bytes") + shown[on].first);
  }
  for (std::uint32_t id : all) Switch(id, 0);
  EXPECT_THAT(Rows(), ElementsAre(std::string(kSaved) + "General,Both,125"));
}

TEST_F(SummaryFileTest, TotalsComeFromTheirStatisticsFirst) {
  Add(u"Some", kSummaryPacketsAndBytes, 50, 125);
  auto add_total = [&](const Guid& identifier, SummaryKind kind, std::uint64_t value) {
    engine.live.summary.push_back({identifier, kGroup, u"Total", {kind, value, 0}});
  };
  add_total(kStatTotalPackets, kSummaryPackets, 100);
  add_total(kStatTotalBytes, kSummaryBytes, 500);
  add_total(kStatDuration, kSummaryDuration, 1'000'000'000);
  EXPECT_EQ(Rows().at(0), std::string(kSaved) + "General,Some,125,50,25.000,50.000,125.000,50.000");
}

TEST_F(SummaryFileTest, NothingToDivideByIsShownAsSuch) {
  engine.live.total_packets = engine.live.total_bytes = engine.live.duration = 0;
  Add(u"Some", kSummaryPacketsAndBytes, 50, 0);
  EXPECT_EQ(Rows().at(0), std::string(kSaved) + "General,Some,0,50,-,-,-,-");
}

TEST_F(SummaryFileTest, ReadsTheSnapshotAndEndsWhereAQueryFails) {
  Add(u"One", kSummaryInteger, 1);
  Add(u"Two", kSummaryInteger, 2);
  Add(u"Three", kSummaryInteger, 3);
  engine.at_snapshot = engine.live;
  engine.live.summary.clear();
  for (const auto& [operation, nth] : {std::pair("ISummarySnapshot::GetIdentifier", 2),
                                       {"ISummarySnapshot::GetParent", 2},
                                       {"ISummarySnapshot::GetValue", 5}}) {  // three calls are for the totals
    engine.Fail(operation, nth, E_FAIL);
    EXPECT_EQ(Rows().size(), 1U) << operation;
  }
  engine.Fail("ISummarySnapshot::GetName", 2, E_FAIL);
  EXPECT_THAT(Rows(),
              ElementsAre(testing::HasSubstr("General,,1"), testing::HasSubstr("Two"), testing::HasSubstr("Three")))
      << "a failing name is an empty one";
  std::filesystem::remove(folder.Path(kFile));
  engine.Fail("ISummaryStats::GetSnapshot", 1, E_FAIL);
  EXPECT_EQ(Output(), S_OK);
  EXPECT_FALSE(folder.Has(kFile)) << "the header comes behind the snapshot";
  engine.at_snapshot->missing = {kSummaryCategory.identifier};
  EXPECT_THAT(Written(kFile), testing::IsEmpty());
}

/// The map is looked for in the folder in which the process works.
class StatisticMapTest : public SummaryFileTest {
 protected:
  StatisticMapTest() {
    Add(u"", kSummaryInteger, 1);
    Add(u"Known", kSummaryInteger, 2);
    std::filesystem::current_path(folder.Path());
  }
  ~StatisticMapTest() override { std::filesystem::current_path(before_); }

  static std::string Entry(std::uint32_t number, const char* rest) {
    return "<stat id=\"{0000000" + std::to_string(number) + "-0000-0000-0000-000000000001}\" " + rest + "/>";
  }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
};

TEST_F(StatisticMapTest, NamesWhatTheEngineDoesNot) {
  engine.live.group_names.clear();
  folder.Write("StatMap.xml", "<any>" + Entry(1, "name='early'") + "<other/>" + Entry(1, "name='Mapped &amp; late'") +
                                  Entry(2, "name='not used'") +
                                  "<stat id='{11111111-0000-0000-0000-000000000001}' name='Mapped group'/></any>");
  EXPECT_THAT(Rows(), ElementsAre(testing::HasSubstr("Mapped group,Mapped & late,1"),
                                  testing::HasSubstr("Mapped group,Known,2")));
  folder.Write("StatMap.xml", "<any>" + Entry(1, "name='changed'") + "</any>");
  EXPECT_THAT(Rows().at(0), testing::HasSubstr("Mapped & late")) << "a map is read once";
}

TEST_F(StatisticMapTest, BrokenMapsNameNothingAndAreTriedAgain) {
  for (const std::string& broken : {std::string("<any>"), "<any>" + Entry(1, "name='a'") + Entry(2, "") + "</any>",
                                    "<any>" + Entry(1, "name='a'") + "<stat name='b'/></any>",
                                    std::string("<any><stat id='{1}' name='a'/></any>"), std::string()}) {
    folder.Write("StatMap.xml", broken);
    EXPECT_THAT(Rows().at(0), testing::HasSubstr("General,,1")) << broken;
  }
  folder.Write("StatMap.xml", "<any>" + Entry(1, "name='Mended'") + "</any>");
  EXPECT_THAT(Rows().at(0), testing::HasSubstr("General,Mended,1"));
}

}  // namespace
}  // namespace orvo::test

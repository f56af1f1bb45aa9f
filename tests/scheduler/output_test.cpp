// One output from end to end: what is called in which order, what is told of it, and what retention deletes.

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/message.h"
#include "prefs/stats_output_prefs.h"
#include "tests/scheduler/schedule_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// A scheduler whose first output falls due at 11:00, without a set, and that notes everything but the time.
class Outputs : public testing::Test {
 protected:
  Outputs() {
    schedule_.time_format = nullptr;
    schedule_.note_format = schedule_.note_notifications = true;
  }

  Schedule schedule_{"2007-11-14 10:10:00", "newSetEnabled='0'"};
};

const std::string kDone = R"(told 0 | Statistics output to R:\Reports\)";

std::string Failure(Status status) {
  return "told 3 | Error encountered during statistics output: " + ToUtf8(SystemMessage(status));
}

TEST_F(Outputs, TellTheMethodItsFormatOnce) {
  const std::pair<int, std::vector<std::string>> cases[] = {
      {0, {"format | .csv ,"}},
      {1, {"format | .txt tab"}},
      {2, {"format | .xml , preferences R:\\", "interval | 3600"}},
      {3, {"format | .csv ,"}},
      {4, {"format | .pdf ,", "interval | 3600"}},
      {-1, {"format | .csv ,"}},
  };
  for (const auto& [type, told] : cases) {
    Schedule schedule("2007-11-14 10:10:00", "newSetEnabled='0' outputType='" + std::to_string(type) + "'");
    schedule.time_format = nullptr;
    schedule.note_format = true;
    ComPtr<IStatsOutputPrefs> preferences;
    ASSERT_EQ(CreateStatsOutputPrefs(IStatsOutputPrefs::kIid, preferences.OutVoid()), S_OK);
    if (type == 2) {
      schedule.scheduler->SetPrefs(preferences.get());
      schedule.scheduler->SetTemplateRoot(Bstr(u"R:\\").get());
    }
    std::vector<std::string> expected = told;
    expected.push_back("output");
    EXPECT_THAT(schedule.RunTo("2007-11-14 11:00:00"), ElementsAreArray(expected)) << type;
    schedule.scheduler->SetOutputType(2);
    EXPECT_THAT(schedule.RunTo("2007-11-14 12:00:00"), ElementsAre("output"));
    schedule.startable->Stop();
    EXPECT_THAT(schedule.RunTo("2007-11-14 13:00:00"), ElementsAre("output")) << "nor after a restart";
  }
}

TEST_F(Outputs, AreToldOf) {
  EXPECT_THAT(schedule_.RunTo("2007-11-14 11:00:00"), ElementsAre("format | .csv ,", "output", kDone));
  schedule_.scheduler->SetNotify(0);
  EXPECT_THAT(schedule_.RunTo("2007-11-14 12:00:00"), ElementsAre("output"));
  schedule_.scheduler->SetNotify(1);
  schedule_.scheduler->SetNotifySink(nullptr, kTestNotification);
  EXPECT_THAT(schedule_.RunTo("2007-11-14 13:00:00"), ElementsAre("output"));
}

TEST_F(Outputs, AreMadeOnlyWhenThereIsSomethingToMakeThemOf) {
  schedule_.scheduler->SetContext(nullptr);
  EXPECT_THAT(schedule_.RunTo("2007-11-14 11:00:00"), IsEmpty());
  schedule_.scheduler->SetContext(schedule_.context.get());
  schedule_.scheduler->SetOutputMethod(nullptr);
  EXPECT_THAT(schedule_.RunTo("2007-11-14 12:00:00"), IsEmpty());
  EXPECT_THAT(schedule_.folder.Names(), IsEmpty());

  // Without a method no set is named either, so that one which comes later has no folder until the next Start.
  Schedule late("2007-11-14 10:10:00", "scheduled='1'");
  late.scheduler->SetOutputMethod(nullptr);
  late.RunTo("2007-11-14 10:30:00");
  late.scheduler->SetOutputMethod(late.method.get());
  EXPECT_THAT(late.RunTo("2007-11-14 12:00:00"), IsEmpty());
}

TEST_F(Outputs, FailWithTheirStatusAndGoOn) {
  std::vector<Status> statuses = {S_FALSE, E_FAIL, StatusFromError(kErrorDiskFull), MakeStatus(0x8ABC1234)};
  schedule_.on_output = [&] { return statuses.at(static_cast<std::size_t>(schedule_.outputs - 1)); };
  EXPECT_THAT(schedule_.RunTo("2007-11-14 14:00:00"),
              ElementsAre("format | .csv ,", "output", kDone, "output", Failure(E_FAIL), "output",
                          "told 3 | Error encountered during statistics output: The disk is full.", "output",
                          "told 3 | Error encountered during statistics output: "));
}

TEST_F(Outputs, FailWithoutAFolder) {
  schedule_.folder.Write("Reports", "a file");
  EXPECT_THAT(schedule_.RunTo("2007-11-14 11:00:00"), ElementsAre(Failure(E_FAIL)));
  std::filesystem::remove(schedule_.folder.Path("Reports"));
  EXPECT_THAT(schedule_.RunTo("2007-11-14 12:00:00"), ElementsAre("format | .csv ,", "output", kDone));
}

TEST_F(Outputs, FailWithTheirFormatUntilTheMethodTakesIt) {
  schedule_.Set("outputType='2'");
  schedule_.format_status = E_OUTOFMEMORY;
  EXPECT_THAT(schedule_.RunTo("2007-11-14 11:00:00"), ElementsAre("format | .xml ,", Failure(E_OUTOFMEMORY)));
  schedule_.format_status = S_OK;
  schedule_.interval_status = E_INVALIDARG;
  EXPECT_THAT(schedule_.RunTo("2007-11-14 12:00:00"),
              ElementsAre("format | .xml ,", "interval | 3600", Failure(E_INVALIDARG)));
  schedule_.interval_status = S_OK;
  EXPECT_THAT(schedule_.RunTo("2007-11-14 13:00:00"),
              ElementsAre("format | .xml ,", "interval | 3600", "output", kDone));
}

TEST_F(Outputs, ResetTheStatisticsWhenTheySucceed) {
  schedule_.Set("ResetOutput='-2'");
  schedule_.on_output = [&] { return schedule_.outputs == 2 ? E_FAIL : S_OK; };
  EXPECT_THAT(schedule_.RunTo("2007-11-14 12:00:00"),
              ElementsAre("format | .csv ,", "output", "statistics reset", kDone, "output", Failure(E_FAIL)));
  schedule_.reset_status = E_NOTIMPL;
  EXPECT_THAT(schedule_.RunTo("2007-11-14 13:00:00"), ElementsAre("output", "statistics reset", Failure(E_NOTIMPL)));
}

TEST_F(Outputs, AreFollowedByRetentionAlsoWhenTheyFail) {
  Schedule schedule("2007-11-14 10:10:00", "keep='1'");
  schedule.on_output = [] { return E_FAIL; };
  schedule.RunTo("2007-11-14 13:00:00");
  EXPECT_THAT(schedule.sets_on_disk, ElementsAre("Reports/Reports-2007-11-14 12.00.00 - 13.00.00"));
}

TEST(ReportSets, AreNamedAfterTheReportPath) {
  const struct {
    const char16_t* user;
    const char16_t* report;
    const char16_t* set;  // before the time
  } cases[] = {
      {u"R:\\", u"Reports", u"R:\\Reports\\Reports-"},
      {u"R:\\", u"Daily#x", u"R:\\Daily\\Daily-"},
      {u"R:\\", u"My.Reports", u"R:\\My\\My-"},
      {u"R:\\", u"My.Own.Reports", u"R:\\My.Own\\My.Own-"},
      {u"R:\\", u"A#b.c#d", u"R:\\A\\A-"},
      {u"R:\\", u"A.b#c", u"R:\\A\\A-"},
      {u"R:\\", u"#x", u"R:\\"},
      {u"R:\\", u"Deep\\er\\", u"R:\\Deep\\er\\"},
      {u"R:\\", u"Deep\\er\\Name", u"R:\\Deep\\er\\Name\\Name-"},
      {u"R:", u"Name", u"R:Name\\Name-"},
  };
  for (const auto& c : cases) {
    Schedule schedule("2007-11-14 10:10:00");
    EXPECT_EQ(ToUtf8(ReportSetFolder({c.user, c.report}, At("2007-11-14 10:00:00"), At("2007-11-14 11:00:00"))),
              ToUtf8(c.set) + "2007-11-14 10.00.00 - 11.00.00");
    EXPECT_EQ(schedule.folder.Has("Deep/er"), std::u16string_view(c.report).starts_with(u"Deep"));
  }
}

TEST(ReportSets, AWholeReportPathBecomesTheUserPath) {
  const struct {
    const char16_t* report;
    const char16_t* user_after;
    const char16_t* report_after;
  } cases[] = {
      {u"D:\\Old\\Reports", u"D:\\Old\\Reports\\", u"Reports"},
      {u"\\\\server\\share\\", u"\\\\server\\share\\", u"Reports"},
      {u"a\\\\b", u"a\\\\b\\", u"Reports"},
      {u"a\\b", u"U:\\", u"a\\b"},
      {u"a:b", u"U:\\", u"a:b"},
      {u"", u"U:\\", u""},
  };
  for (const auto& c : cases) {
    ReportPaths paths{u"U:\\", c.report};
    SplitWholeReportPath(&paths);
    EXPECT_EQ(paths.user, c.user_after);
    EXPECT_EQ(paths.report, c.report_after);
  }
}

TEST(ReportSets, AreListedOnceAndOnlyByWhoeverStartedLast) {
  ReportSets sets;
  int first = 0, second = 0;
  sets.Adopt(&first);
  for (const char16_t* folder : {u"R:\\a", u"R:\\b", u"R:\\B", u"R:\\a"}) sets.Begin(&first, folder);
  sets.Adopt(&second);
  sets.Begin(&first, u"R:\\late");
  sets.UseFolder(&first, u"R:\\late\\");
  EXPECT_EQ(sets.folder(), u"R:\\a\\");
  EXPECT_EQ(sets.TakeOldest(3), std::nullopt);
  EXPECT_EQ(sets.TakeOldest(2), u"R:\\a");
  EXPECT_EQ(sets.TakeOldest(0), u"R:\\b") << "the first of the two that differ by case";
  EXPECT_EQ(sets.TakeOldest(0), u"R:\\a");
  EXPECT_EQ(sets.TakeOldest(0), std::nullopt);
}

/// A folder with the name of an hour's set.
std::string Hour(int hour) {
  char name[80];
  std::snprintf(name, sizeof(name), "Reports/Reports-2007-11-14 %02d.00.00 - %02d.00.00", hour, hour + 1);
  return name;
}

// The folders of the hours from 10 on are the scheduler's; each test keeps one and spoils another.
class Retention : public testing::Test {
 protected:
  Schedule schedule_{"2007-11-14 10:10:00", "keep='1'"};
  TemporaryFolder outside_;
};

TEST_F(Retention, DeletesOnlyWhatItHasNamed) {
  for (const std::string& name : {Hour(9), std::string("Reports/Reports-x"), Hour(10) + " copy"}) {
    std::filesystem::create_directories(schedule_.folder.Path(name));
  }
  schedule_.on_output = [&] {
    const std::string set = schedule_.folder.Path(Hour(9 + schedule_.outputs));
    std::filesystem::create_directories(set + "/deep/er");
    std::ofstream(set + "/deep/er/file") << "x";
    return S_OK;
  };
  schedule_.RunTo("2007-11-14 13:00:00");
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(schedule_.folder.Path("Reports"))) {
    names.push_back("Reports/" + entry.path().filename().string());
  }
  EXPECT_THAT(names, testing::UnorderedElementsAre(Hour(9), "Reports/Reports-x", Hour(10) + " copy", Hour(12)));
}

TEST_F(Retention, FollowsNoLink) {
  outside_.Write("mine", "untouched");
  schedule_.on_output = [&] {
    const std::string set = schedule_.folder.Path(Hour(9 + schedule_.outputs));
    if (schedule_.outputs == 1) std::filesystem::create_directory_symlink(outside_.Path(), set + "/link");
    if (schedule_.outputs == 2) {
      std::filesystem::remove(set);
      std::filesystem::create_directory_symlink(outside_.Path(), set);
    }
    return S_OK;
  };
  schedule_.RunTo("2007-11-14 13:00:00");
  EXPECT_EQ(outside_.Read("mine"), "untouched");
  EXPECT_FALSE(schedule_.folder.Has(Hour(10)));
  EXPECT_FALSE(std::filesystem::is_symlink(schedule_.folder.Path(Hour(11))));
}

TEST_F(Retention, GoesOnAfterWhatItCannotDelete) {
  std::ofstream open;
  schedule_.on_output = [&] {
    const std::string set = schedule_.folder.Path(Hour(9 + schedule_.outputs));
    switch (schedule_.outputs) {
      case 1: open.open(set + "/open"); break;
      case 2: std::filesystem::remove(set); break;
      case 3:
        std::ofstream(set + "/file") << "x";
        chmod(set.c_str(), 0555);
        break;
      default: break;
    }
    return S_OK;
  };
  schedule_.RunTo("2007-11-14 15:00:00");
  EXPECT_EQ(schedule_.outputs, 5);
  for (int hour : {10, 11, 13}) EXPECT_FALSE(schedule_.folder.Has(Hour(hour))) << hour;
  EXPECT_TRUE(schedule_.folder.Has(Hour(14)));
  // Only root may delete in a folder that is closed to writing.
  EXPECT_EQ(schedule_.folder.Has(Hour(12)), geteuid() != 0);
  chmod(schedule_.folder.Path(Hour(12)).c_str(), 0755);
}

TEST_F(Retention, DeletesAllThatAreTooManyAtOnce) {
  schedule_.Set("keep='7'");
  schedule_.RunTo("2007-11-14 16:00:00");
  EXPECT_EQ(schedule_.sets_on_disk.size(), 6U);
  schedule_.Set("keep='2'");
  schedule_.RunTo("2007-11-14 17:00:00");
  EXPECT_THAT(schedule_.sets_on_disk, ElementsAre(Hour(15), Hour(16)));
}

}  // namespace
}  // namespace orvo::test

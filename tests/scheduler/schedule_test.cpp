// What a scheduler does and when, compared line by line with tables that can be checked by hand.

#include <gmock/gmock.h>

#include "tests/scheduler/schedule_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

struct Case {
  const char* what;
  const char* attributes;
  std::pair<const char*, const char*> time;  ///< begin and end, UTC
  std::vector<std::string> log;
  const char* zone = nullptr;  ///< UTC when null; with one, logs tell how far it is off
};

void Expect(const Case& c) {
  InZone(c.zone ? c.zone : "UTC", [&] {
    Schedule schedule(c.time.first, c.attributes);
    if (c.zone) schedule.time_format = "%d %H:%M:%S%z";
    EXPECT_THAT(schedule.RunTo(c.time.second), ElementsAreArray(c.log)) << c.what;
  });
}

TEST(Schedule, MakesOutputsWithoutSets) {
  const Case cases[] = {
      {"aligned at the start only, the rest follows by plain intervals",
       "outputInterval='7' outputIntervalUnit='2' newSetEnabled='0'",
       {"2007-11-14 10:23:40", "2007-11-14 11:03:00"},
       {"14 10:28:00 output", "14 10:35:00 output", "14 10:42:00 output", "14 10:49:00 output", "14 10:56:00 output",
        "14 11:03:00 output"}},
      {"not aligned",
       "outputInterval='7' outputIntervalUnit='2' alignOutput='0' newSetEnabled='0'",
       {"2007-11-14 10:23:40", "2007-11-14 10:40:00"},
       {"14 10:30:40 output", "14 10:37:40 output"}},
      {"every five seconds at the most, after a first one that is aligned to two",
       "outputInterval='2' outputIntervalUnit='1' newSetEnabled='0'",
       {"2007-11-14 10:23:41", "2007-11-14 10:23:53"},
       {"14 10:23:42 output", "14 10:23:47 output", "14 10:23:52 output"}},
      {"an interval of nothing is aligned to the begin of the hour, from where on all that was missed is made up for",
       "outputInterval='0' outputIntervalUnit='2' newSetEnabled='0'",
       {"2007-11-14 10:00:07", "2007-11-14 10:00:15"},
       {"14 10:00:07 output", "14 10:00:07 output", "14 10:00:10 output", "14 10:00:15 output"}},
      {"a report path that leads somewhere by itself",
       R"(outputInterval='1' reportPath='R:\Old\Mine' newSetEnabled='0')",
       {"2007-11-14 10:59:00", "2007-11-14 11:00:00"},
       {R"(14 11:00:00 output R:\Old\Mine\Reports\)"}},
      {"no path, no output",
       "userPath='' reportPath='' newSetEnabled='0'",
       {"2007-11-14 10:59:00", "2007-11-14 12:00:00"},
       {}},
  };
  for (const Case& c : cases) Expect(c);
}

TEST(Schedule, MakesSets) {
  const Case cases[] = {
      {"as a new scheduler does: every output begins a set",
       "",
       {"2007-11-14 09:23:40", "2007-11-14 12:30:00"},
       {"14 10:00:00 output 2007-11-14 09.00.00 - 10.00.00", "14 11:00:00 output 2007-11-14 10.00.00 - 11.00.00",
        "14 12:00:00 output 2007-11-14 11.00.00 - 12.00.00"}},
      {"whatever the interval of sets, while they are not scheduled",
       "outputInterval='7' outputIntervalUnit='2' alignOutput='0' newSetInterval='60' newSetIntervalUnit='2'",
       {"2007-11-14 09:23:40", "2007-11-14 09:38:00"},
       {"14 09:30:40 output 2007-11-14 09.23.40 - 09.30.40", "14 09:37:40 output 2007-11-14 09.30.40 - 09.37.40"}},
      {"an output at the boundary goes into the set that ends",
       "scheduled='1'",
       {"2007-11-14 21:23:40", "2007-11-15 02:30:00"},
       {"14 22:00:00 output 2007-11-14 00.00.00 - 2007-11-15 00.00.00",
        "14 23:00:00 output 2007-11-14 00.00.00 - 2007-11-15 00.00.00",
        "15 00:00:00 output 2007-11-14 00.00.00 - 2007-11-15 00.00.00",
        "15 01:00:00 output 2007-11-15 00.00.00 - 2007-11-16 00.00.00",
        "15 02:00:00 output 2007-11-15 00.00.00 - 2007-11-16 00.00.00"}},
      {"a boundary between two outputs has one of its own",
       "scheduled='1' alignOutput='0'",
       {"2007-11-14 22:30:00", "2007-11-15 00:45:00"},
       {"14 23:30:00 output 2007-11-14 00.00.00 - 2007-11-15 00.00.00",
        "15 00:00:00 output 2007-11-14 00.00.00 - 2007-11-15 00.00.00",
        "15 00:30:00 output 2007-11-15 00.00.00 - 2007-11-16 00.00.00"}},
      {"sets are never shorter than the time between outputs",
       "scheduled='1' newSetInterval='1' newSetIntervalUnit='2' alignNewSet='0'",
       {"2007-11-14 10:23:40", "2007-11-14 12:00:00"},
       {"14 11:00:00 output 2007-11-14 10.23.40 - 11.23.40", "14 11:23:40 output 2007-11-14 10.23.40 - 11.23.40",
        "14 12:00:00 output 2007-11-14 11.23.40 - 12.23.40"}},
      {"but the first is aligned to what was asked for",
       "scheduled='1' newSetInterval='15' newSetIntervalUnit='2'",
       {"2007-11-14 10:23:40", "2007-11-14 11:00:00"},
       {"14 10:30:00 output 2007-11-14 09.30.00 - 10.30.00", "14 11:00:00 output 2007-11-14 10.30.00 - 11.30.00"}},
      {"an interval of nothing aligns sets to last Sunday",
       "outputInterval='1' outputIntervalUnit='4' scheduled='1' newSetInterval='0' newSetIntervalUnit='4'",
       {"2007-11-13 00:00:01", "2007-11-13 12:00:00"},
       {"13 00:00:01 output 2007-11-10 00.00.00 - 2007-11-11 00.00.00",
        "13 00:00:01 output 2007-11-11 00.00.00 - 2007-11-12 00.00.00",
        "13 00:00:01 output 2007-11-12 00.00.00 - 2007-11-13 00.00.00"}},
  };
  for (const Case& c : cases) Expect(c);
}

TEST(Schedule, DeletesTheOldestSets) {
  const Case cases[] = {
      {"all but two",
       "keep='2'",
       {"2007-11-14 09:23:40", "2007-11-14 13:00:00"},
       {"14 10:00:00 output 2007-11-14 09.00.00 - 10.00.00", "14 11:00:00 output 2007-11-14 10.00.00 - 11.00.00",
        "14 12:00:00 output 2007-11-14 11.00.00 - 12.00.00", "deleted 2007-11-14 09.00.00 - 10.00.00",
        "14 13:00:00 output 2007-11-14 12.00.00 - 13.00.00", "deleted 2007-11-14 10.00.00 - 11.00.00"}},
      {"with none to keep, that of the output itself",
       "keep='0' scheduled='1'",
       {"2007-11-14 09:23:40", "2007-11-14 11:00:00"},
       {"14 10:00:00 output 2007-11-14 00.00.00 - 2007-11-15 00.00.00",
        "14 11:00:00 output 2007-11-14 00.00.00 - 2007-11-15 00.00.00"}},
      {"none when they are kept",
       "keep='0' keepEnabled='0'",
       {"2007-11-14 09:23:40", "2007-11-14 11:00:00"},
       {"14 10:00:00 output 2007-11-14 09.00.00 - 10.00.00", "14 11:00:00 output 2007-11-14 10.00.00 - 11.00.00"}},
  };
  for (const Case& c : cases) Expect(c);

  Schedule none("2007-11-14 09:23:40", "keep='0' scheduled='1'");
  none.RunTo("2007-11-14 10:00:00");
  EXPECT_EQ(none.folder.Names(), std::vector<std::string>{"Reports"});
  EXPECT_TRUE(std::filesystem::is_empty(none.folder.Path("Reports"))) << "gone right after its output";
}

// Only the start knows the calendar. Later times follow by seconds, so that they move on the clock when it changes.
TEST(Schedule, FollowsSecondsWhereClocksChange) {
  constexpr char kBerlin[] = "CET-1CEST,M3.5.0,M10.5.0/3";
  constexpr char kNewYork[] = "EST5EDT,M3.2.0,M11.1.0";
  const Case cases[] = {
      {"Berlin in spring",
       "outputIntervalUnit='4'",
       {"2026-03-28 12:00:00", "2026-03-30 23:00:00"},
       {"29 00:00:00+0100 output 2026-03-28 00.00.00 - 2026-03-29 00.00.00",
        "30 01:00:00+0200 output 2026-03-29 00.00.00 - 2026-03-30 01.00.00",
        "31 01:00:00+0200 output 2026-03-30 01.00.00 - 2026-03-31 01.00.00"},
       kBerlin},
      {"Berlin in autumn",
       "outputIntervalUnit='4'",
       {"2026-10-24 12:00:00", "2026-10-26 22:00:00"},
       {"25 00:00:00+0200 output 2026-10-24 00.00.00 - 2026-10-25 00.00.00",
        "25 23:00:00+0100 output 2026-10-25 00.00.00 - 23.00.00",
        "26 23:00:00+0100 output 2026-10-25 23.00.00 - 2026-10-26 23.00.00"},
       kBerlin},
      {"New York in spring",
       "",
       {"2026-03-08 05:30:00", "2026-03-08 08:00:00"},
       {"08 01:00:00-0500 output 2026-03-08 00.00.00 - 01.00.00",
        "08 03:00:00-0400 output 2026-03-08 01.00.00 - 03.00.00",
        "08 04:00:00-0400 output 2026-03-08 03.00.00 - 04.00.00"},
       kNewYork},
      {"New York in autumn",
       "",
       {"2026-11-01 04:30:00", "2026-11-01 07:00:00"},
       {"01 01:00:00-0400 output 2026-11-01 00.00.00 - 01.00.00",
        "01 01:00:00-0500 output 2026-11-01 01.00.00 - 01.00.00",
        "01 02:00:00-0500 output 2026-11-01 01.00.00 - 02.00.00"},
       kNewYork},
  };
  for (const Case& c : cases) Expect(c);
}

TEST(Schedule, WaitsOutItsTimeWhenTheClockIsSetBack) {
  Schedule schedule("2007-11-14 09:50:00", "newSetEnabled='0'");
  EXPECT_THAT(schedule.RunTo("2007-11-14 10:30:00"), ElementsAre("14 10:00:00 output"));
  schedule.clock.Jump(-3600);
  EXPECT_THAT(schedule.RunTo("2007-11-14 13:30:00"),
              ElementsAre("14 10:00:00 output", "14 12:00:00 output", "14 13:00:00 output"));
}

TEST(Schedule, MakesUpForWhatItHasSleptThrough) {
  Schedule schedule("2007-11-14 10:10:00");
  schedule.RunTo("2007-11-14 10:30:00");
  schedule.clock.Jump(10'800);
  EXPECT_THAT(schedule.RunTo("2007-11-14 15:00:00"), ElementsAre("14 14:00:00 output 2007-11-14 10.00.00 - 11.00.00",
                                                                 "14 14:00:00 output 2007-11-14 11.00.00 - 12.00.00",
                                                                 "14 14:00:00 output 2007-11-14 12.00.00 - 13.00.00",
                                                                 "14 14:00:00 output 2007-11-14 13.00.00 - 14.00.00",
                                                                 "14 15:00:00 output 2007-11-14 14.00.00 - 15.00.00"));
}

TEST(Schedule, MakesUpForASlowOutput) {
  Schedule schedule("2007-11-14 10:10:00", "newSetEnabled='0'");
  schedule.on_output = [&] {
    if (schedule.outputs == 1) schedule.clock.Jump(7'260);
    return S_OK;
  };
  // Which the clock shows at 14:01 after all.
  EXPECT_THAT(schedule.RunTo("2007-11-14 12:00:00"),
              ElementsAre("14 11:00:00 output", "14 13:01:00 output", "14 13:01:00 output", "14 14:00:00 output"));
}

// Ten thousand outputs and more, none of which is a second late.
TEST(Schedule, KeepsTimeForAYear) {
  const struct {
    const char* what;
    const char* attributes;
    const char* end;
    int outputs;
    int step;              // every output's time is a multiple of it after the first
    std::size_t sets = 0;  // on the disk at the end
  } cases[] = {
      // A year has 8,760 hours. 2026 begins on a Thursday.
      {"60 minutes", "outputInterval='60' outputIntervalUnit='2' newSetEnabled='0'", nullptr, 8'760, 3'600},
      {"7 minutes", "outputInterval='7' outputIntervalUnit='2' newSetEnabled='0'", nullptr, 525'600 / 7, 420},
      {"1 hour, not aligned", "alignOutput='0' newSetEnabled='0'", nullptr, 8'760, 3'600},
      {"7 hours", "outputInterval='7' newSetEnabled='0'", nullptr, 8'760 / 7, 7 * 3'600},
      {"60 hours", "outputInterval='60' newSetEnabled='0'", nullptr, 8'760 / 60, 60 * 3'600},
      {"1 hour, in sets of a day, not aligned", "scheduled='1' alignNewSet='0'", nullptr, 8'760, 3'600, 7},
      // At midnight on 365 days there is one output more, except where seven hours end there as well.
      {"7 hours, in sets of a day", "outputInterval='7' scheduled='1'", nullptr, 8'760 / 7 + 365 - 365 / 7, 3'600, 7},
      {"1 day, in sets of a week", "outputIntervalUnit='4' scheduled='1' newSetInterval='7'", nullptr, 365, 86'400, 7},
      {"7 days, each in a set, twenty of which are kept", "outputInterval='7' outputIntervalUnit='4' keep='20'",
       nullptr, 52, 7 * 86'400, 20},
      // From the Sunday before, on February 26, April 27, June 26, August 25, October 24, December 23.
      {"60 days", "outputInterval='60' outputIntervalUnit='4' newSetEnabled='0'", nullptr, 6, 60 * 86'400},
      {"7 seconds for a day", "outputInterval='7' outputIntervalUnit='1' newSetEnabled='0'", "2026-01-02 00:00:00",
       86'400 / 7, 7},
      {"60 seconds for a day", "outputInterval='60' outputIntervalUnit='1' newSetEnabled='0'", "2026-01-02 00:00:00",
       1'440, 60},
      {"1 second, then 5", "outputInterval='1' outputIntervalUnit='1' newSetEnabled='0'", "2026-01-02 00:00:00",
       86'400 / 5, 5},
      {"0 seconds, which is 5", "outputInterval='0' outputIntervalUnit='1' alignOutput='0' newSetEnabled='0'",
       "2026-01-02 00:00:00", 86'400 / 5, 5},
  };
  for (const auto& c : cases) {
    Schedule schedule("2026-01-01 00:00:00", c.attributes);
    schedule.note_outputs = false;
    std::int64_t first = 0;
    std::int64_t late = 0;
    schedule.on_output = [&] {
      if (schedule.outputs == 1) first = schedule.clock.Seconds();
      late += (schedule.clock.Seconds() - first) % c.step;
      return S_OK;
    };
    schedule.RunTo(c.end ? c.end : "2027-01-01 00:00:00");
    EXPECT_EQ(schedule.outputs, c.outputs) << c.what;
    EXPECT_EQ(late, 0) << c.what;
    schedule.LookForDeletions();
    EXPECT_EQ(schedule.sets_on_disk.size(), c.sets) << c.what;
  }
}

TEST(Schedule, TakesSettingsOverAtTheNextStart) {
  Schedule schedule("2007-11-14 09:50:00", "newSetEnabled='0'");
  schedule.RunTo("2007-11-14 10:30:00");
  schedule.Set(R"(outputInterval='10' outputIntervalUnit='2' userPath='R:\New\')");
  EXPECT_THAT(schedule.RunTo("2007-11-14 11:05:00"), ElementsAre("14 11:00:00 output"));
  EXPECT_EQ(schedule.startable->Stop(), S_OK);
  EXPECT_THAT(schedule.RunTo("2007-11-14 11:25:00"),
              ElementsAre(R"(14 11:10:00 output R:\New\Reports\)", R"(14 11:20:00 output R:\New\Reports\)"));
}

TEST(Schedule, TakesPathsOverWithTheNextSet) {
  Schedule schedule("2007-11-14 23:30:00", "scheduled='1'");
  schedule.RunTo("2007-11-14 23:31:00");
  schedule.Set("reportPath='New'");
  EXPECT_THAT(schedule.RunTo("2007-11-15 01:00:00"),
              ElementsAre("15 00:00:00 output 2007-11-14 00.00.00 - 2007-11-15 00.00.00",
                          R"(15 01:00:00 output R:\New\New-2007-11-15 00.00.00 - 2007-11-16 00.00.00\)"));
}

TEST(Schedule, RemembersItsSetsFromStartToStart) {
  Schedule schedule("2007-11-14 09:50:00", "keep='2'");
  schedule.RunTo("2007-11-14 11:30:00");
  schedule.startable->Stop();
  // The set that had just begun begins again, and is one set all the same.
  EXPECT_THAT(
      schedule.RunTo("2007-11-14 13:30:00"),
      ElementsAre("14 12:00:00 output 2007-11-14 11.00.00 - 12.00.00", "deleted 2007-11-14 09.00.00 - 10.00.00",
                  "14 13:00:00 output 2007-11-14 12.00.00 - 13.00.00", "deleted 2007-11-14 10.00.00 - 11.00.00"));
}

}  // namespace
}  // namespace orvo::test

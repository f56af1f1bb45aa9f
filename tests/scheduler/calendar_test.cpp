#include "scheduler/calendar.h"

#include <limits>

#include "tests/scheduler/schedule_fixture.h"

namespace orvo {
namespace {

using test::At;

constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max();

TEST(Calendar, AlignsToTheNextLargerUnit) {
  const std::int64_t wednesday = At("2007-11-14 10:23:40");
  const std::pair<Interval, const char*> cases[] = {
      {{15, kUnitMinutes}, "2007-11-14 10:30:00"},
      {{6, kUnitHours}, "2007-11-14 12:00:00"},
      {{1, kUnitDays}, "2007-11-15 00:00:00"},
      {{7, kUnitDays}, "2007-11-18 00:00:00"},
      {{30, kUnitSeconds}, "2007-11-14 10:24:00"},
      {{1, kUnitSeconds}, "2007-11-14 10:23:41"},
      {{7, kUnitSeconds}, "2007-11-14 10:23:42"},
      {{60, kUnitSeconds}, "2007-11-14 10:24:00"},
      {{0, kUnitSeconds}, "2007-11-14 10:23:00"},
      {{1, kUnitMinutes}, "2007-11-14 10:24:00"},
      {{7, kUnitMinutes}, "2007-11-14 10:28:00"},
      {{60, kUnitMinutes}, "2007-11-14 11:00:00"},
      {{0, kUnitMinutes}, "2007-11-14 10:00:00"},
      {{1, kUnitHours}, "2007-11-14 11:00:00"},
      {{7, kUnitHours}, "2007-11-14 14:00:00"},
      {{60, kUnitHours}, "2007-11-16 12:00:00"},
      {{0, kUnitHours}, "2007-11-14 00:00:00"},
      {{60, kUnitDays}, "2008-01-10 00:00:00"},
      {{0, kUnitDays}, "2007-11-11 00:00:00"},
      {{30, 0}, "2007-11-14 10:24:00"},
      {{30, 5}, "2007-11-14 10:24:00"},
      {{30, -1}, "2007-11-14 10:24:00"},
  };
  for (const auto& [interval, next] : cases) {
    EXPECT_EQ(AlignedNext(interval, wednesday), At(next)) << interval.value << " of unit " << interval.unit;
  }
}

// European clocks change at 01:00 UTC, New York's at 02:00 local time, Lord Howe's by half an hour.
constexpr char kBerlin[] = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr char kNewYork[] = "EST5EDT,M3.2.0,M11.1.0";
constexpr char kLordHowe[] = "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0";

TEST(Calendar, AlignsByPlainSecondsWhereClocksChange) {
  const struct {
    const char* zone;
    const char* now;  // UTC, as the result
    Interval interval;
    const char* next;
  } cases[] = {
      // The day of the change has 23 hours: seen from before the change its end comes an hour late, at 01:00.
      {kBerlin, "2026-03-29 00:30:00", {1, kUnitDays}, "2026-03-29 23:00:00"},
      {kBerlin, "2026-03-29 12:00:00", {1, kUnitDays}, "2026-03-29 22:00:00"},
      {kBerlin, "2026-03-29 00:30:00", {6, kUnitHours}, "2026-03-29 05:00:00"},
      {kBerlin, "2026-03-29 00:30:00", {1, kUnitHours}, "2026-03-29 01:00:00"},
      // And 25 in autumn, when 02:30 comes twice.
      {kBerlin, "2026-10-24 23:00:00", {1, kUnitDays}, "2026-10-25 22:00:00"},
      {kBerlin, "2026-10-25 00:30:00", {1, kUnitHours}, "2026-10-25 01:00:00"},
      {kBerlin, "2026-10-25 01:30:00", {1, kUnitHours}, "2026-10-25 02:00:00"},
      {kNewYork, "2026-03-08 06:10:00", {1, kUnitHours}, "2026-03-08 07:00:00"},
      {kNewYork, "2026-03-08 06:10:00", {7, kUnitDays}, "2026-03-15 05:00:00"},
      {kNewYork, "2026-11-01 05:30:00", {6, kUnitHours}, "2026-11-01 10:00:00"},
      {kLordHowe, "2026-10-03 15:00:00", {1, kUnitHours}, "2026-10-03 15:30:00"},
      {kLordHowe, "2026-10-03 15:40:00", {1, kUnitHours}, "2026-10-03 16:00:00"},
      {kLordHowe, "2026-04-04 14:50:00", {1, kUnitHours}, "2026-04-04 15:00:00"},
      {kLordHowe, "2026-04-04 15:10:00", {1, kUnitHours}, "2026-04-04 15:30:00"},
  };
  for (const auto& c : cases) {
    test::InZone(c.zone,
                 [&] { EXPECT_EQ(AlignedNext(c.interval, At(c.now)), At(c.next)) << c.zone << " at " << c.now; });
  }
}

TEST(Calendar, CountsIntervalsInSeconds) {
  const std::uint32_t most = std::numeric_limits<std::uint32_t>::max();
  const struct {
    Interval interval;
    std::uint32_t seconds;
  } cases[] = {{{7, kUnitSeconds}, 7},       {{60, kUnitMinutes}, 3'600}, {{7, kUnitHours}, 25'200},
               {{7, kUnitDays}, 604'800},    {{0, kUnitDays}, 0},         {{7, 77}, 7},
               {{most, kUnitSeconds}, most}, {{most, kUnitDays}, most}};
  for (const auto& c : cases) EXPECT_EQ(LengthOf(c.interval), c.seconds);
}

TEST(Calendar, WordsTheTimeOfAReportSet) {
  const std::tuple<std::int64_t, std::int64_t, std::u16string> cases[] = {
      {At("2007-11-14 10:00:00"), At("2007-11-14 11:00:00"), u"2007-11-14 10.00.00 - 11.00.00"},
      {At("2007-11-14 00:00:00"), At("2007-11-15 00:00:00"), u"2007-11-14 00.00.00 - 2007-11-15 00.00.00"},
      {At("2007-12-31 23:59:59"), At("2008-01-01 00:00:04"), u"2007-12-31 23.59.59 - 2008-01-01 00.00.04"},
      // Times that the clock cannot show are moved to the last that it can.
      {-kLatest, kLatest, u"1601-01-01 00.00.00 - 2185-07-21 23.34.33"},
  };
  for (const auto& [begin, end, text] : cases) EXPECT_EQ(RangeText(begin, end), text);
}

}  // namespace
}  // namespace orvo

#include "platform/locale.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>
#include <thread>
#include <vector>

#include "platform/clock.h"
#include "tests/support/zone.h"

namespace orvo {
namespace {

using test::InZone;

std::u16string Date(const CalendarTime& date) {
  std::u16string text = u"unchanged";
  EXPECT_EQ(FormatShortDate(date, &text), S_OK);
  return text;
}

std::u16string Time(int hour, int minute, int second) {
  std::u16string text = u"unchanged";
  EXPECT_EQ(FormatTime24(hour, minute, second, &text), S_OK);
  return text;
}

const CalendarTime kDate{.year = 2026, .month = 11, .day = 22};

struct LocaleCase {
  const char* name;
  std::u16string tag, date, time, long_time, decimal, thousand, grouping;
};

TEST(LocaleTest, FormsAndItemsAreTheLocales) {
  const LocaleCase kCases[] = {
      {"C", u"en-US", u"11/22/2026", u"14:05:09", u"124:05:09", u".", u",", u"3;0"},
      {"en_US.UTF-8", u"en-US", u"11/22/2026", u"14:05:09", u"124:05:09", u".", u",", u"3;0"},
      {"de_DE.ISO-8859-15@euro", u"de-DE", u"22.11.2026", u"14:05:09", u"124:05:09", u",", u".", u"3;0"},
      {"da-DK", u"da-DK", u"22.11.2026", u"14.05.09", u"124.05.09", u",", u".", u"3;0"},
      {"hi-IN", u"hi-IN", u"22/11/2026", u"14:05:09", u"124:05:09", u".", u",", u"3;2;0"},
      {"sr_RS@latin", u"sr-Latn-RS", u"22.11.2026.", u"14:05:09", u"124:05:09", u",", u".", u"3;0"},
      {"ar_EG", u"ar-EG", u"\u0662\u0662\u200F/\u0661\u0661\u200F/\u0662\u0660\u0662\u0666",
       u"\u0661\u0664:\u0660\u0665:\u0660\u0669", u"\u0661\u0662\u0664:\u0660\u0665:\u0660\u0669", u"\u066B", u"\u066C",
       u"3;0"},
  };
  for (const LocaleCase& c : kCases) {
    ASSERT_EQ(SetUserLocale(c.name), S_OK) << c.name;
    EXPECT_EQ(UserLocaleName(), c.tag);
    EXPECT_EQ(Date(kDate), c.date) << c.name;
    EXPECT_EQ(Time(14, 5, 9), c.time) << c.name;
    EXPECT_EQ(Time(124, 5, 9), c.long_time) << c.name;
    EXPECT_EQ(LocaleInfo(LocaleItem::kDecimal), c.decimal) << c.name;
    EXPECT_EQ(LocaleInfo(LocaleItem::kThousand), c.thousand) << c.name;
    EXPECT_EQ(LocaleInfo(LocaleItem::kGrouping), c.grouping) << c.name;
    EXPECT_EQ(LocaleInfo(LocaleItem::kLeadingZero), u"1");
    EXPECT_EQ(LocaleInfo(LocaleItem::kNegativeNumber), u"1");
  }
  ASSERT_EQ(SetUserLocale("sv"), S_OK);
  EXPECT_EQ(LocaleInfo(LocaleItem::kNegativeSign), u"\u2212");
  // Locales that name hours and minutes in a time of day.
  for (const char* wordy : {"fr_CA", "ko_KR", "bg_BG"}) {
    ASSERT_EQ(SetUserLocale(wordy), S_OK);
    EXPECT_EQ(Time(14, 5, 9), u"14:05:09") << wordy;
  }
}

TEST(LocaleTest, AnUnknownLanguageLeavesTheLocaleAsItIs) {
  ASSERT_EQ(SetUserLocale("de-DE"), S_OK);
  for (const char* name : {"", "xx", "nonsense", "de_DE_de_DE", "../../etc", "1234"}) {
    EXPECT_EQ(SetUserLocale(name), E_INVALIDARG) << name;
  }
  EXPECT_EQ(SetUserLocale(std::string(5000, 'd')), E_INVALIDARG);
  EXPECT_EQ(UserLocaleName(), u"de-DE");
}

TEST(LocaleTest, ValuesThatAreNoDateOrTimeFail) {
  ASSERT_EQ(SetUserLocale("C"), S_OK);
  std::u16string text = u"old";
  EXPECT_EQ(FormatShortDate({.year = 2025, .month = 2, .day = 29}, &text), E_INVALIDARG);
  EXPECT_EQ(text, u"");
  EXPECT_EQ(FormatShortDate({.year = 2025, .month = 13, .day = 1}, &text), E_INVALIDARG);
  EXPECT_EQ(FormatShortDate(kDate, nullptr), E_POINTER);
  EXPECT_EQ(FormatTime24(-1, 0, 0, &text), E_INVALIDARG);
  EXPECT_EQ(FormatTime24(0, 60, 0, &text), E_INVALIDARG);
  EXPECT_EQ(FormatTime24(0, 0, 0, nullptr), E_POINTER);
  EXPECT_EQ(Time(23, 59, 60), u"23:59:60");
  EXPECT_EQ(Time(std::numeric_limits<int>::max(), 0, 0), u"2147483647:00:00");
  EXPECT_EQ(Date({.year = 2024, .month = 2, .day = 29}), u"2/29/2024");
  EXPECT_EQ(Date({.year = 1601, .month = 1, .day = 1}), u"1/1/1601");
}

TEST(LocaleTest, ThreadsFormatAtTheSameTime) {
  ASSERT_EQ(SetUserLocale("de-DE"), S_OK);
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads(4);
  for (std::thread& thread : threads) {
    thread = std::thread([&] {
      for (int round = 0; round < 200; ++round) wrong += Date(kDate) != u"22.11.2026" || Time(1, 2, 3) != u"01:02:03";
      EXPECT_EQ(GetThreadLocale(), kUserDefaultLocale);
      SetThreadLocale(kSystemDefaultLocale);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(GetThreadLocale(), kUserDefaultLocale);
}

constexpr std::uint64_t kSecond = 1'000'000'000;

std::uint64_t FromUnixSeconds(std::int64_t seconds) {
  return static_cast<std::uint64_t>(seconds + 11'644'473'600) * kSecond;
}

void ExpectLocal(std::uint64_t time, const CalendarTime& expected) {
  CalendarTime local;
  ASSERT_EQ(ToLocalTime(time, &local), S_OK);
  EXPECT_EQ(std::tie(local.year, local.month, local.day, local.hour, local.minute, local.second, local.weekday),
            std::tie(expected.year, expected.month, expected.day, expected.hour, expected.minute, expected.second,
                     expected.weekday))
      << time;
}

TEST(LocalTimeTest, TheWholeRangeHasCalendarFields) {
  InZone("UTC0", [] {
    ExpectLocal(0, {1601, 1, 1, 0, 0, 0, 1});
    ExpectLocal(kSecond - 1, {1601, 1, 1, 0, 0, 0, 1});
    ExpectLocal(kUnixEpoch - 1, {1969, 12, 31, 23, 59, 59, 3});
    ExpectLocal(kUnixEpoch, {1970, 1, 1, 0, 0, 0, 4});
    ExpectLocal(FromUnixSeconds(951'782'400), {2000, 2, 29, 0, 0, 0, 2});
    ExpectLocal(std::numeric_limits<std::uint64_t>::max(), {2185, 7, 21, 23, 34, 33, 4});
  });
  InZone("XXX-5:30", [] {
    ExpectLocal(0, {1601, 1, 1, 5, 30, 0, 1});
    ExpectLocal(kUnixEpoch - 1, {1970, 1, 1, 5, 29, 59, 4});
  });
  InZone("XXX8", [] { ExpectLocal(0, {1600, 12, 31, 16, 0, 0, 0}); });
  EXPECT_EQ(ToLocalTime(0, nullptr), E_POINTER);
  EXPECT_EQ(LocalOffset(0, nullptr), E_POINTER);
}

TEST(LocalTimeTest, TheOffsetChangesAtTheSecond) {
  // The second zone changes within a quarter of an hour, one minute after midnight.
  for (const char* zone : {"CET-1CEST,M3.5.0,M10.5.0/3", "NST3:30NDT,M3.2.0/0:01,M11.1.0/0:01"}) {
    InZone(zone, [zone] {
      constexpr std::int64_t kYear2026 = 1'767'225'600;
      constexpr std::int64_t kYear = 31'622'400;
      int changes = 0;
      long last = 0;
      for (std::int64_t t = kYear2026; t < kYear2026 + kYear; t += 3'601) {
        for (std::int64_t seconds : {t, t + 1, t - 900}) {
          time_t value = seconds;
          tm fields{};
          localtime_r(&value, &fields);
          std::int32_t offset = 0;
          ASSERT_EQ(LocalOffset(FromUnixSeconds(seconds), &offset), S_OK);
          ASSERT_EQ(offset, fields.tm_gmtoff) << zone << " at " << seconds;
          changes += offset != last;
          last = offset;
        }
      }
      EXPECT_GE(changes, 3) << zone;
    });
  }
  InZone("NST3:30NDT,M3.2.0/0:01,M11.1.0/0:01", [] {
    constexpr std::int64_t kChange = 1'772'940'660;  // 2026-03-08 03:31:00 UTC
    std::int32_t offset = 0;
    for (std::int64_t from_change : {-1, 0, -60, 839, -61, 840}) {
      ASSERT_EQ(LocalOffset(FromUnixSeconds(kChange + from_change), &offset), S_OK);
      EXPECT_EQ(offset, from_change < 0 ? -12'600 : -9'000) << from_change;
    }
  });
}

}  // namespace
}  // namespace orvo

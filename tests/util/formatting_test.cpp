#include "util/formatting.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "platform/clock.h"
#include "platform/code_page.h"
#include "platform/locale.h"
#include "tests/support/zone.h"
#include "util/date_time.h"
#include "util/duration.h"
#include "util/locale_number.h"
#include "util/printable_bytes.h"
#include "util/timestamp_formatter.h"

namespace orvo {
namespace {

using test::InZone;

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::int64_t kDay = 86400 * kSecond;
constexpr char16_t kDays[] = u"%sd %s";

// 2024-07-15 14:05:09.25 UTC.
constexpr std::uint64_t kJuly = TimeFromUnix(1'721'052'309 * kSecond + 250'000'000);

class Formatting : public testing::Test {
 protected:
  Formatting() { SetUserLocale("en-US"); }
  ~Formatting() override { SetUserLocale("en-US"); }
};

TEST_F(Formatting, WritesDatesAndTimesInLocalTime) {
  const struct {
    const char* zone;
    const char* locale;
    std::uint64_t time;
    const char16_t* date;
    const char16_t* time_of_day;
  } cases[] = {
      {"UTC", "en-US", kJuly, u"7/15/2024", u"14:05:09"},
      {"Europe/Berlin", "de-DE", kJuly, u"15.07.2024", u"16:05:09"},
      {"America/New_York", "en-US", TimeFromUnix(0), u"12/31/1969", u"19:00:00"},
      {"UTC", "fi-FI", kJuly, u"15.7.2024", u"14.05.09"},
      {"UTC", "en-US", 0, u"1/1/1601", u"00:00:00"},
  };
  for (const auto& c : cases) {
    SetUserLocale(c.locale);
    InZone(c.zone, [&] {
      std::u16string date, time_of_day, both;
      EXPECT_EQ(FormatDate(c.time, &date), S_OK);
      EXPECT_EQ(FormatTimeOfDay(c.time, kNoFraction, &time_of_day), S_OK);
      EXPECT_EQ(FormatTimestamp(c.time, &both), S_OK);
      EXPECT_EQ(ToUtf8(date), ToUtf8(c.date)) << c.locale;
      EXPECT_EQ(ToUtf8(time_of_day), ToUtf8(c.time_of_day)) << c.locale;
      EXPECT_EQ(both, date + u" " + time_of_day);
    });
  }
  EXPECT_EQ(FormatDate(0, nullptr), E_POINTER);
  EXPECT_EQ(FormatTimeOfDay(0, kNoFraction, nullptr), E_POINTER);
  EXPECT_EQ(FormatTimestamp(0, nullptr), E_POINTER);
}

TEST_F(Formatting, WritesFractionsOfASecond) {
  const std::tuple<const char*, int, const char16_t*> cases[] = {
      {"en-US", kMilliseconds, u"00:00:01.007"},
      {"en-US", kMicroseconds, u"00:00:01.007005"},
      {"de-DE", kNanoseconds, u"00:00:01,007005003"},
      {"en-US", kNoFraction, u"00:00:01"},
      {"en-US", -1, u"00:00:01"},
      {"en-US", 4, u"00:00:01"},
  };
  for (const auto& [locale, precision, expected] : cases) {
    SetUserLocale(locale);
    std::u16string text;
    EXPECT_EQ(FormatTimeOfDay(TimeFromUnix(kSecond + 7'005'003), precision, &text), S_OK);
    EXPECT_EQ(ToUtf8(text), ToUtf8(expected));
  }
}

// The fast way must give what the plain functions give, hour by hour over a year with both its changes, and second by
// second around them.
TEST_F(Formatting, TimestampsOfManyRowsEqualSingleOnes) {
  constexpr std::int64_t kNewYear = 1'704'067'200;  // 2024-01-01 UTC
  const struct {
    const char* zone;
    const char* locale;
    std::vector<std::int64_t> changes;  // seconds since 1970
  } cases[] = {
      {"Europe/Berlin", "de-DE", {1'711'846'800, 1'729'990'800}},
      {"America/New_York", "en-US", {1'710'054'000, 1'730'613'600}},
      {"Australia/Lord_Howe", "fa-IR", {1'712'415'600, 1'728'142'200}},
      {"UTC", "fi-FI", {}},
  };
  for (const auto& c : cases) {
    SetUserLocale(c.locale);
    InZone(c.zone, [&] {
      TimestampFormatter formatter;
      std::u16string plain, fast;
      auto compare = [&](std::uint64_t time) {
        fast = u"|";
        ASSERT_EQ(FormatTimestamp(time, &plain), S_OK);
        ASSERT_EQ(formatter.Append(time, &fast), S_OK);
        ASSERT_EQ(ToUtf8(fast), ToUtf8(u"|" + plain)) << c.zone << " at " << UnixFromTime(time);
      };
      std::int32_t before = 0, after = 0;
      for (std::int64_t change : c.changes) {
        LocalOffset(TimeFromUnix((change - 1) * kSecond), &before);
        LocalOffset(TimeFromUnix(change * kSecond), &after);
        EXPECT_NE(before, after) << "the test's own table of " << c.zone;
        for (std::int64_t second = -5000; second < 5000; second += 7) {
          compare(TimeFromUnix((change + second) * kSecond));
        }
      }
      for (std::int64_t second = 0; second < 366 * 86400; second += 2213) {
        compare(TimeFromUnix((kNewYear + second) * kSecond + 999'999'999));
      }
      for (std::uint64_t time : {std::uint64_t{0}, std::uint64_t{kSecond}, UINT64_MAX, UINT64_MAX - kDay, kJuly}) {
        compare(time);
      }
    });
  }
  TimestampFormatter formatter;
  EXPECT_EQ(formatter.Append(kJuly, nullptr), E_POINTER);
}

TEST_F(Formatting, WritesDurations) {
  const struct {
    const char* locale;
    std::int64_t duration;
    int precision;
    std::u16string pattern;
    std::u16string expected;
  } cases[] = {
      {"en-US", 7'250'000'000, kMilliseconds, kDays, u"7.250"},
      {"en-US", 7'250'000'000, kMicroseconds, kDays, u"7.250000"},
      {"de-DE", 59'999'999'999, kNanoseconds, kDays, u"59,999999999"},
      {"en-US", 0, kMilliseconds, kDays, u"0.000"},
      {"en-US", 60 * kSecond, kMilliseconds, kDays, u"00:01:00.000"},
      {"en-US", 3600 * kSecond, kMicroseconds, kDays, u"01:00:00.000000"},
      {"en-US", 7 * kSecond + 999'999'999, kNoFraction, kDays, u"00:00:07"},
      {"en-US", kDay - 1, kNoFraction, kDays, u"23:59:59"},
      {"en-US", kDay, kNoFraction, kDays, u"1d 00:00:00"},
      {"en-US", kDay, kMilliseconds, kDays, u"1d 00:00:00.000"},
      {"en-US", 2 * kDay + (3 * 3600 + 4 * 60 + 5) * kSecond + 250'000'000, kMilliseconds, kDays, u"2d 03:04:05.250"},
      {"fi-FI", 2 * kDay + (3 * 3600 + 4 * 60 + 5) * kSecond, kNoFraction, kDays, u"2d 3.04.05"},
      {"en-US", -1'500'000'000, kMicroseconds, kDays, u"-1.500000"},
      {"sv-SE", -1'500'000'000, kMilliseconds, kDays, u"\u22121,500"},
      {"en-US", -kDay, kNoFraction, kDays, u"-1d 00:00:00"},
      {"en-US", INT64_MAX, kNanoseconds, kDays, u"106751d 23:47:16.854775807"},
      {"en-US", INT64_MIN, kNanoseconds, kDays, u"-106751d 23:47:16.854775808"},
      {"en-US", 5 * kSecond, -1, kDays, u""},
      {"en-US", -5 * kSecond, -1, kDays, u"-"},
      {"en-US", -5 * kSecond, 4, kDays, u""},
      {"en-US", kDay, kNoFraction, u"%s", u"1"},
      {"en-US", kDay, kNoFraction, u"days", u"days"},
      {"en-US", kDay, kNoFraction, u"%s %d %s %s", u"1 %d 00:00:00 %s"},
      {"en-US", kDay, kNoFraction, u"%", u"%"},
      {"en-US", kDay, kNoFraction, std::u16string(300, u'x'), std::u16string(256, u'x')},
  };
  for (const auto& c : cases) {
    SetUserLocale(c.locale);
    std::u16string text = u"old";
    EXPECT_EQ(FormatDuration(c.duration, c.precision, c.pattern, &text), S_OK);
    EXPECT_EQ(ToUtf8(text), ToUtf8(c.expected)) << c.duration << " precision " << c.precision;
  }
  EXPECT_EQ(FormatDuration(0, kNoFraction, kDays, nullptr), E_POINTER);
}

TEST_F(Formatting, WritesNumbersOfTheUser) {
  const std::tuple<double, int, const char16_t*> cases[] = {
      {0, 3, u"0.000"},
      {1234567.8915, 2, u"1,234,567.89"},
      {-1234.5, 1, u"-1,234.5"},
      {999.9999, 3, u"1,000.000"},
      {0.125, 2, u"0.12"},
      {12, 0, u"12"},
      {1234, -3, u"1,234"},
      {0.000000001, 9, u"0.000000001"},
      {1234.0, 10, u"1234.0000000000"},  // more decimals than a locale's form has
      {5, 0, u" 5"},                     // printed two wide, and a blank is in no number
      {1.0 / 0.0, 3, u"inf"},
      {-1.0 / 0.0, 3, u"-inf"},
  };
  std::u16string text;
  for (const auto& [value, decimals, expected] : cases) {
    EXPECT_EQ(FormatNumber(value, decimals, &text), S_OK);
    EXPECT_EQ(ToUtf8(text), ToUtf8(expected));
  }
  for (auto [value, decimals] : {std::pair{1e308, 3}, {-1e308, 0}, {0.1, 2'000'000'000}}) {
    EXPECT_EQ(FormatNumber(value, decimals, &text), S_OK);
    EXPECT_EQ(text.size(), kFormattedTextLimit);
  }
  EXPECT_EQ(FormatNumber(1, 1, nullptr), E_POINTER);
}

TEST_F(Formatting, NumbersOnManyThreadsKeepTheirOwnDecimals) {
  std::vector<std::thread> threads;
  for (int decimals = 1; decimals <= 4; ++decimals) {
    threads.emplace_back([decimals] {
      std::u16string expected = u"1,000." + std::u16string(static_cast<std::size_t>(decimals), u'0');
      for (int i = 0; i < 500; ++i) {
        std::u16string text;
        FormatNumber(1000, decimals, &text);
        ASSERT_EQ(text, expected);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST_F(Formatting, PunctuatesAsALocaleWants) {
  const NumberFormat plain;
  auto with = [&](auto&& change) {
    NumberFormat changed = plain;
    change(changed);
    return changed;
  };
  const std::tuple<const char*, NumberFormat, const char16_t*> cases[] = {
      {"-1234.50", with([](NumberFormat& f) { f.negative_order = 0; }), u"(1,234.50)"},
      {"-1.50", with([](NumberFormat& f) { f.negative_order = 2; }), u"- 1.50"},
      {"-1.50", with([](NumberFormat& f) { f.negative_order = 3; }), u"1.50-"},
      {"-1.50", with([](NumberFormat& f) { f.negative_order = 4; }), u"1.50 -"},
      {"-1.50", with([](NumberFormat& f) { f.negative_order = 9; }), u"-1.50"},
      {"1234567.00", with([](NumberFormat& f) { f.grouping = 0; }), u"1234567.00"},
      {"1234567.00", with([](NumberFormat& f) { f.grouping = 4; }), u"123,4567.00"},
      {"123.00", plain, u"123.00"},
      {"0.25", with([](NumberFormat& f) { f.leading_zero = false; }), u".25"},
      {"10.25", with([](NumberFormat& f) { f.leading_zero = false; }), u"10.25"},
      {"12345.00", with([](NumberFormat& f) {
         f.thousand = u"\u00A0";
         f.decimal = u",";
       }),
       u"12\u00A0345,00"},
  };
  for (const auto& [number, format, expected] : cases) {
    std::u16string text;
    EXPECT_TRUE(PunctuateNumber(number, format, &text)) << number;
    EXPECT_EQ(ToUtf8(text), ToUtf8(expected));
  }
  for (const char* number : {"", "-", ".", ".25", "1", "1.2", "1.234", "1.2.3", " 1.00", "1e5.00", "--1.00", "nan"}) {
    std::u16string text = u"kept";
    EXPECT_FALSE(PunctuateNumber(number, plain, &text)) << number;
    EXPECT_EQ(text, u"kept");
  }
}

TEST_F(Formatting, ReadsNumberFormatsOfLocales) {
  const std::tuple<const char*, std::u16string, std::u16string> cases[] = {
      {"en-US", u".", u","}, {"de-DE", u",", u"."}, {"hi-IN", u".", u","}, {"fr-FR", u",", u"\u202F"}};
  for (const auto& [locale, decimal, thousand] : cases) {
    SetUserLocale(locale);
    NumberFormat format = ReadNumberFormat();
    EXPECT_EQ(format.decimal, decimal) << locale;
    EXPECT_EQ(format.thousand, thousand) << locale;
    EXPECT_EQ(format.grouping, 3) << locale;
    EXPECT_EQ(format.negative_order, 1) << locale;
    EXPECT_TRUE(format.leading_zero) << locale;
  }
}

TEST(PrintableBytes, ShowsTextOrHexadecimal) {
  const struct {
    std::vector<std::uint8_t> bytes;
    std::size_t capacity;
    bool fits;
    const char16_t* expected;
  } cases[] = {
      {{0x41, 0x42, 0x43}, 256, true, u"ABC"},
      {{0x41, 0x00}, 256, true, u"0x4100"},
      {{0xE9}, 256, true, u"0xE9"},
      {{0x20, 0x7F}, 256, true, u" \u007F"},
      {{0x1F}, 256, true, u"0x1F"},
      {{}, 256, true, u""},
      {{0x41, 0x42}, 7, true, u"AB"},
      {{0x41, 0x42}, 6, false, u""},
      {{}, 3, true, u""},
      {{}, 2, false, u""},
      {{0x41}, 0, false, u""},
      {std::vector<std::uint8_t>(200, 0x41), 256, false, u""},
  };
  for (const auto& c : cases) {
    std::u16string text = u"old";
    EXPECT_EQ(PrintableBytes(c.bytes, c.capacity, &text), c.fits);
    EXPECT_EQ(ToUtf8(text), ToUtf8(c.expected));
  }
}

}  // namespace
}  // namespace orvo

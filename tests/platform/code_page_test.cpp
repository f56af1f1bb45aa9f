#include "platform/code_page.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace orvo {
namespace {

std::string Narrow(std::u16string_view text) {
  std::string out = "|";
  EXPECT_EQ(AppendNarrow(text, &out), S_OK);
  return out;
}

std::string SystemNarrow(std::u16string_view text) {
  std::string out;
  EXPECT_EQ(AppendSystemNarrow(text, &out), S_OK);
  return out;
}

TEST(CodePageTest, ConvertsToTheSelectedEncoding) {
  struct Case {
    const char* code_page;
    std::u16string text;
    std::string bytes;
  };
  const Case kCases[] = {
      {"UTF-8", u"ASCII only, longer than eight", "|ASCII only, longer than eight"},
      {"utf8", u"caf\u00E9 \u65E5 \U0001F600", "|caf\xC3\xA9 \xE6\x97\xA5 \xF0\x9F\x98\x80"},
      {"UTF-8",
       std::u16string(u"a\xD800"
                      u"b\xDC00"
                      u"c\xD83D"),
       "|a?b?c?"},
      {"windows-1252", u"caf\u00E9 \u20AC 12345678 \u65E5.", "|caf\xE9 \x80 12345678 ?."},
      {"windows-1252", std::u16string(u"\xD800\x00E9\xDC00"), "|?\xE9?"},
      {"Shift_JIS", u"\u65E5\u672C\\~", "|\x93\xFA\x96\x7B\\~"},
      {"GB18030", u"\u20AC\U0001F600", "|\xA2\xE3\x94\x39\xFC\x36"},
      // What shows nothing is lacking like anything else.
      {"ISO-8859-1", u"a\u200Eb\uFE0F", "|a?b?"},
      {"US-ASCII", u"caf\u00E9", "|caf?"},
      {"KOI8-R", u"", "|"},
  };
  for (const Case& c : kCases) {
    ASSERT_EQ(SetCodePage(c.code_page), S_OK) << c.code_page;
    EXPECT_EQ(Narrow(c.text), c.bytes) << c.code_page;
  }
  // Longer than any buffer on the way.
  ASSERT_EQ(SetCodePage("windows-1252"), S_OK);
  EXPECT_EQ(Narrow(std::u16string(5000, u'\u00E9')), "|" + std::string(5000, '\xE9'));
}

TEST(CodePageTest, RefusesWhatIsNoSupersetOfAscii) {
  ASSERT_EQ(SetCodePage("ISO-8859-15"), S_OK);
  for (const char* name : {"", "nonsense", "UTF-16", "UTF-16LE", "UTF-32", "UTF-7", "ISO-2022-JP", "ISO-2022-KR",
                           "HZ-GB-2312", "ibm-037", "ibm-1047", "SCSU", "BOCU-1", "CESU-8", "UTF-8,version=1"}) {
    EXPECT_EQ(SetCodePage(name), E_INVALIDARG) << name;
  }
  EXPECT_EQ(SetCodePage(std::string(1000, 'x')), E_INVALIDARG);
  EXPECT_EQ(SetCodePage(std::string_view("UTF-8\0x", 7)), E_INVALIDARG);
  EXPECT_EQ(CodePageName(), "ISO-8859-15");
  EXPECT_EQ(Narrow(u"\u20AC"), "|\xA4");
}

TEST(CodePageTest, EveryThreadSeesAChange) {
  ASSERT_EQ(SetCodePage("windows-1252"), S_OK);
  std::vector<std::thread> threads(4);
  std::atomic<int> wrong = 0;
  for (std::thread& thread : threads) {
    thread = std::thread([&, i = &thread - threads.data()] {
      for (int round = 0; round < 200; ++round) {
        if (i == 0) SetCodePage(round % 2 == 0 ? "ISO-8859-5" : "windows-1252");
        std::string bytes = Narrow(u"\u00A7");
        wrong += bytes != "|\xA7" && bytes != "|\xFD";
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(Narrow(u"\u00A7"), "|\xA7");
}

TEST(CodePageTest, SystemNarrowIsAsciiWithBestFit) {
  struct Case {
    std::u16string text;
    std::string ascii;
  };
  const Case kCases[] = {
      {u"plain text, 1234567890", "plain text, 1234567890"},
      {u"caf\u00E9 e\u0301 \u00C5\u1EA4", "cafe e AA"},
      {u"Stra\u00DFe \u00F8 \u00C6 \u0141\u00F3d\u017A \u0131", "Strasse o AE Lodz i"},
      {u"\u2018a\u2019 \u201Cb\u201D \u2013 \u2014 \u2026 5\u00B5s 5\u03BCs", "'a' \"b\" - - ... 5us 5us"},
      {u"\uFF21\uFB01 \u00BD \u2122 1\u202F000\u00A0x", "Afi 1/2 TM 1 000 x"},
      {u"\u0662\u200F/\u0661\u0661 \u0967\U0001E951", "2/11 11"},
      {u"\u65E5\u672C \uD55C \U0001F600 \u0416", "?? ? ? ?"},
      {std::u16string(u"a\xD800z"), "a?z"},
      {std::u16string(u"a\0b", 3), std::string("a\0b", 3)},
  };
  for (const Case& c : kCases) EXPECT_EQ(SystemNarrow(c.text), c.ascii);
}

TEST(CodePageTest, Utf8IsStrict) {
  struct Case {
    std::string bytes;
    std::u16string text;
  };
  const Case kCases[] = {
      {"a\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80", u"a\u00E9\u65E5\U0001F600"},
      {"\xF4\x8F\xBF\xBF\xEF\xBF\xBF", u"\U0010FFFF\uFFFF"},
      // One U+FFFD for each maximal subpart; the bytes of overlong forms and surrogates stand alone.
      {"\x80\xBF", u"\uFFFD\uFFFD"},
      {"\xC0\xAF", u"\uFFFD\uFFFD"},
      {"\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},
      {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
      {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xF0\x9F\x98z", u"\uFFFDz"},
      {"\xE6\x97", u"\uFFFD"},
      {"\xFF", u"\uFFFD"},
  };
  for (const Case& c : kCases) EXPECT_EQ(FromUtf8(c.bytes), c.text);
  EXPECT_EQ(ToUtf8(kCases[0].text), kCases[0].bytes);
  EXPECT_EQ(ToUtf8(kCases[1].text), kCases[1].bytes);
  EXPECT_EQ(ToUtf8(u"\xD83D\xDE00\xDE00\xD83D"), "\xF0\x9F\x98\x80\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
}  // namespace orvo

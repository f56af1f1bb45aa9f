#include "util/string_table.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(StringTable, KnowsTextsByIdentifier) {
  const std::tuple<std::uint32_t, std::uint32_t, const char*> cases[] = {
      {100, kStrProjectName, "OrvoReports"},
      {200, kStrWirelessStatistics, "Wireless Statistics"},
      {215, kStrDaysAndTime, "%sd %s"},
      {310, kStrNodeProtocolDetailStatistics, "Node-Protocol Detail Statistics"},
      {320, kStrWindow12Hours, "12 Hour Window (5 Minute Average)"},
      {326, kStrWindow2Minutes, "2 Minute Window (1 Second Average)"},
      {333, kStrVoipMediaStatistics, "VoIP Media Statistics"},
  };
  for (const auto& [identifier, constant, text] : cases) {
    EXPECT_EQ(constant, identifier);
    EXPECT_EQ(AsciiTextOf(identifier), text);
  }
}

TEST(StringTable, BothFormsAgreeAndAreClosedByZero) {
  for (std::uint32_t identifier = 200; identifier <= 333; ++identifier) {
    std::string_view bytes = AsciiTextOf(identifier);
    std::u16string_view text = TextOf(identifier);
    EXPECT_FALSE(bytes.empty()) << identifier;
    EXPECT_EQ(std::u16string(bytes.begin(), bytes.end()), text) << identifier;
    EXPECT_EQ(*(text.data() + text.size()), u'\0') << identifier;
  }
}

TEST(StringTable, HasNothingElse) {
  for (std::uint32_t identifier : {0U, 99U, 101U, 199U, 334U, 0xFFFFFFFFU}) {
    EXPECT_TRUE(TextOf(identifier).empty()) << identifier;
    EXPECT_TRUE(AsciiTextOf(identifier).empty()) << identifier;
  }
}

}  // namespace
}  // namespace orvo

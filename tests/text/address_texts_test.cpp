#include "text/address_texts.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace orvo::test {
namespace {

AddressRecord Numbered(std::uint32_t number, std::uint8_t type = kAddressIp) {
  AddressRecord record{1, type, 4, 0, {}};
  std::memcpy(record.bytes.data(), &number, sizeof number);
  return record;
}

// Far more addresses than places: a text may be gone, but is never another's.
TEST(AddressTexts, GivesEachAddressItsOwnText) {
  AddressTexts texts;
  std::vector<AddressRecord> table(200'000);
  EXPECT_EQ(texts.Find(table[1]), "");
  for (std::uint32_t number = 0; number < table.size(); ++number) {
    table[number] = Numbered(number);
    texts.Keep(table[number], std::to_string(number));
  }
  std::uint32_t kept = 0;
  for (std::uint32_t number = 0; number < table.size(); ++number) {
    const std::string_view found = texts.Find(table[number]);
    if (found.empty()) continue;
    ASSERT_EQ(found, std::to_string(number));
    ++kept;
  }
  EXPECT_GT(kept, 50'000U);
  AddressRecord& last = table.back();
  EXPECT_EQ(texts.Find(last), "199999") << "the last is there";
  texts.Keep(last, std::string(40, 'x'));
  EXPECT_EQ(texts.Find(last), "199999") << "too long to be kept";
  last = Numbered(199'999, kAddressWan);
  EXPECT_EQ(texts.Find(last), "") << "another address in the same memory";
}

}  // namespace
}  // namespace orvo::test

#include "platform/fixed_text.h"

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace orvo::test {
namespace {

std::string Written(double value, int decimals) {
  std::array<char, 352> room;
  return {room.data(), WriteFixed(value, decimals, room.data(), room.data() + room.size())};
}

std::string Expected(double value, int decimals) {
  std::array<char, 352> room;
  return {room.data(),
          std::to_chars(room.data(), room.data() + room.size(), value, std::chars_format::fixed, decimals).ptr};
}

TEST(FixedText, WritesWhatTheLibraryWrites) {
  std::vector<double> values{0,
                             0.5,
                             1.5,
                             2.5,
                             0.125,
                             0.375,
                             0.0005,
                             0.00049999999999999999,
                             1e12,
                             1e-12,
                             1e300,
                             5e-324,
                             999.9999995,
                             99.9995,
                             0.062500,
                             100.0 / 3,
                             1e-5,
                             2.0005,
                             1048575,
                             1e12 - 1,
                             std::nextafter(1e12, 0),
                             std::nextafter(1e-12, 0),
                             std::numeric_limits<double>::max()};
  std::mt19937_64 random(1);
  for (int i = 0; i < 20'000; ++i) {
    values.push_back(std::ldexp(static_cast<double>(random()), -static_cast<int>(random() % 110)));
    values.push_back(static_cast<double>(random() % 1'000'000) / 8);         // half-way between two
    values.push_back(static_cast<double>(random() % 100'000'000) / 10'000);  // nearly so
  }
  for (double value : values) {
    for (int decimals = 0; decimals <= 6; ++decimals) {
      ASSERT_EQ(Written(value, decimals), Expected(value, decimals)) << value << " with " << decimals;
      ASSERT_EQ(Written(-value, decimals), Expected(-value, decimals)) << value << " with " << decimals;
    }
  }
}

}  // namespace
}  // namespace orvo::test

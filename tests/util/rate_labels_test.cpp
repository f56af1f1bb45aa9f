#include "util/rate_labels.h"

#include <gtest/gtest.h>

#include <string>

namespace orvo {
namespace {

TEST(BandLabel, NamesTheBandsOfChannels) {
  const std::tuple<std::uint32_t, std::int32_t, const char*> cases[] = {
      {0, 1, "all"},
      {1, 1, ""},
      {2, 1, "b"},
      {3, 36, "a"},
      {4, 6, "bg"},
      {5, 1, ""},
      {6, 1, "n"},
      {7, 1, "at"},
      {8, 1, "gt"},
      {9, 1, "sg"},
      {10, 1, ""},
      {99, 1, ""},
      {100, 1, "BPS 1MHz ChBw"},
      {104, 1, "BPS 20MHz ChBw"},
      {105, 1, ""},
      {200, 1, ""},
      {201, 1, "u1"},
      {209, 1, "u9"},
      {210, 1, ""},
      {299, 6, ""},
      {300, 1, "bgn"},
      {300, 14, "bgn"},
      {300, 15, "n20"},
      {300, 29, "n20"},
      {300, 30, "an"},
      {300, 165, "an"},
      {300, 166, "n20"},
      {300, 0, "n20"},
      {300, -1, "n20"},
      {301, 6, "n40"},
      {302, 6, "n40l"},
      {303, 6, "n40h"},
      {304, 6, ""},
      {0xFFFFFFFF, 6, ""},
  };
  for (const auto& [band, channel, label] : cases) {
    EXPECT_EQ(BandLabel(band, channel), label) << band << " channel " << channel;
    const bool stands_alone = band >= 100 && band <= 104;
    EXPECT_EQ(BandText(band, channel), (stands_alone ? "" : "802.11") + std::string(label))
        << band << " channel " << channel;
  }
}

}  // namespace
}  // namespace orvo

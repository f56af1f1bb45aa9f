#include "statistics/data_rates.h"

#include <gmock/gmock.h>

namespace orvo {

bool operator==(const FrameCount& a, const FrameCount& b) {
  return a.packets == b.packets && a.bytes == b.bytes;
}

namespace {

using testing::ElementsAre;

TEST(DataRates, MatchesRecordsByRateInTheOrderOfTheList) {
  const std::uint32_t list[] = {2, 4, 11, 22};
  DataRates rates(list);
  const WirelessRate records[] = {{22, 1, 2}, {4, 3, 4}, {12, 5, 6}, {4, 7, 8}};
  EXPECT_THAT(rates.Match(records), ElementsAre(FrameCount{}, FrameCount{3, 4}, FrameCount{}, FrameCount{1, 2}))
      << "the first record of a rate counts, and rates that are not listed do not";
  EXPECT_THAT(rates.Match({}), ElementsAre(FrameCount{}, FrameCount{}, FrameCount{}, FrameCount{}))
      << "nothing of an earlier match is left";
}

TEST(DataRates, AMediumWithoutRatesHasNoColumns) {
  DataRates rates({});
  const WirelessRate records[] = {{22, 1, 2}};
  EXPECT_TRUE(rates.Match(records).empty());
}

}  // namespace
}  // namespace orvo

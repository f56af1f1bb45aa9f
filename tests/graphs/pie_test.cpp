#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "graphs/pie_chart.h"
#include "graphs/pie_labels.h"

namespace orvo::test {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

std::vector<PieSlice> SlicesFor(std::initializer_list<double> values) {
  CZxGraphDataStorage data;
  data.SetPointCount(1);
  std::uint32_t series = 0;
  for (double value : values) {
    data.EnsureSeries(series, u"");
    data.SetValue(series++, 0, value);
  }
  return SlicesOf(data);
}

TEST(PieTest, SlicesFollowEachOtherFromTheTop) {
  const std::vector<PieSlice> slices = SlicesFor({1, 0, 2, 1});
  ASSERT_EQ(slices.size(), 3U);
  const std::uint32_t series[] = {0, 2, 3};
  const double shares[] = {0.25, 0.5, 0.25};
  double start = -kTurn / 4;
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(slices[i].series, series[i]);
    EXPECT_DOUBLE_EQ(slices[i].share, shares[i]);
    EXPECT_DOUBLE_EQ(slices[i].start, start);
    EXPECT_DOUBLE_EQ(slices[i].sweep, shares[i] * kTurn);
    start += slices[i].sweep;
  }
}

TEST(PieTest, OnlyPositiveNumbersAreSlices) {
  const double nan = std::nan("");
  EXPECT_THAT(SlicesFor({}), testing::IsEmpty());
  EXPECT_THAT(SlicesFor({0, -3, nan, INFINITY, CZxGraphDataStorage::kMissing}), testing::IsEmpty());
  EXPECT_EQ(SlicesFor({-3, 5}).front().share, 1);
  EXPECT_EQ(SlicesFor({1e300, 1e300}).size(), 2U);
}

/// The wishes of slices with these shares.
std::vector<PieLabelWish> WishesFor(const std::vector<double>& shares) {
  std::vector<PieLabelWish> wishes;
  double start = -kTurn / 4;
  for (double share : shares) {
    wishes.push_back({start + share * kTurn / 2, share});
    start += share * kTurn;
  }
  return wishes;
}

TEST(PieLabelsTest, NeitherTouchEachOtherNorTheCircleNorLeaveThePicture) {
  const PieShape pie{.centre = {200, 100}, .radius = 60, .gap = 7, .line_height = 13, .top = 20, .bottom = 180};
  const std::vector<double> cases[] = {
      {1},
      {0.5, 0.5},
      {0.1, 0.1, 0.1, 0.1, 0.1, 0.1, 0.1, 0.1, 0.1, 0.1},
      {0.95, 0.01, 0.01, 0.01, 0.01, 0.01},
      {0.005, 0.005, 0.005, 0.005, 0.005, 0.005, 0.005, 0.965},
      std::vector<double>(40, 0.025),
  };
  for (const std::vector<double>& shares : cases) {
    SCOPED_TRACE(shares.size());
    const std::vector<PieLabelPlace> places = PlacePieLabels(WishesFor(shares), pie);
    EXPECT_EQ(places.size(), std::min<std::size_t>(shares.size(), 24)) << "12 lines at either side";
    for (const PieLabelPlace& a : places) {
      EXPECT_GE(a.y - 6.5, pie.top - 1e-9);
      EXPECT_LE(a.y + 6.5, pie.bottom + 1e-9);
      EXPECT_EQ(a.on_right, a.x >= pie.centre.x);
      const double dy = std::max(std::abs(a.y - pie.centre.y) - 6.5, 0.0);
      EXPECT_GE(std::hypot(a.x - pie.centre.x, dy), pie.radius);
      for (const PieLabelPlace& b : places) {
        if (&a == &b || a.on_right != b.on_right) continue;
        EXPECT_GE(std::abs(a.y - b.y), 13 - 1e-9);
      }
    }
  }
}

TEST(PieLabelsTest, LinesToLabelsGoRoundThePie) {
  const PieShape pie{.centre = {400, 300}, .radius = 230, .gap = 7, .line_height = 13, .top = 40, .bottom = 560};
  const std::vector<double> shares{0.991, 0.001, 0.001, 0.001, 0.001, 0.001, 0.001, 0.001, 0.001, 0.001};
  const std::vector<PieLabelWish> wishes = WishesFor(shares);
  for (const PieLabelPlace& place : PlacePieLabels(wishes, pie)) {
    const PointF end{place.x, place.y};
    const std::vector<PointF> line = LeaderLine(pie, wishes[place.label].angle, end);
    EXPECT_NEAR(std::hypot(line[0].x - 400, line[0].y - 300), 231, 1e-9);
    EXPECT_EQ(line.back().x, end.x);
    EXPECT_EQ(line.back().y, end.y);
    for (std::size_t i = 1; i < line.size(); ++i) {
      for (double t = 0; t <= 1; t += 0.125) {
        const double x = std::lerp(line[i - 1].x, line[i].x, t), y = std::lerp(line[i - 1].y, line[i].y, t);
        EXPECT_GE(std::hypot(x - 400, y - 300), 230.9) << place.label << ": piece " << i << " crosses the circle";
      }
    }
  }
}

TEST(PieLabelsTest, TheSmallestSharesGiveWay) {
  const PieShape pie{.centre = {100, 50}, .radius = 30, .gap = 5, .line_height = 10, .top = 35, .bottom = 65};
  std::vector<double> kept;
  const std::vector<double> shares{0.02, 0.12, 0.11, 0.01, 0.13, 0.03, 0.58};
  const std::vector<PieLabelWish> wishes = WishesFor(shares);
  for (const PieLabelPlace& place : PlacePieLabels(wishes, pie)) {
    if (place.on_right) kept.push_back(shares[place.label]);
  }
  EXPECT_THAT(kept, testing::ElementsAre(0.12, 0.11, 0.13));
}

}  // namespace
}  // namespace orvo::test

#include "graphs/value_axis.h"

#include <gmock/gmock.h>

namespace orvo::test {
namespace {

struct AxisCase {
  double minimum;
  double maximum;
  double axis_minimum;
  double axis_maximum;
  std::uint32_t intervals;
  const char16_t* second_label;
  const char16_t* last_label;
};

TEST(ValueAxisTest, ChoosesRoundSteps) {
  const AxisCase cases[] = {
      {0, 3.7, 0, 4, 8, u"0.5", u"4.0"},
      {0, 100, 0, 100, 10, u"10", u"100"},
      {0, 0, 0, 1, 10, u"0.1", u"1.0"},
      {0, 7, 0, 7, 7, u"1", u"7"},
      {0, 12, 0, 12, 6, u"2", u"12"},
      {0, 150, 0, 160, 8, u"20", u"160"},
      {0, 61, 0, 70, 7, u"10", u"70"},
      {0, 1500, 0, 1600, 8, u"200", u"1,600"},
      // From 21 on neither 2 nor 5 suits, so the next exponent down offers 25 tenths.
      {0, 21, 0, 22.5, 9, u"2.5", u"22.5"},
      {0, 1e12, 0, 1e12, 10, u"100,000,000,000", u"1,000,000,000,000"},
      {0, 8e-6, 0, 8e-6, 8, u"0.000001", u"0.000008"},
      {-5, 3, -5, 3, 8, u"-4", u"3"},
      {-0.35, 0.05, -0.35, 0.05, 8, u"-0.30", u"0.05"},
      {-90, 0, -90, 0, 9, u"-80", u"0"},
  };
  for (const AxisCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.minimum << " to " << c.maximum);
    const ValueAxis axis = ValueAxis::For(c.minimum, c.maximum);
    EXPECT_DOUBLE_EQ(axis.minimum, c.axis_minimum);
    EXPECT_DOUBLE_EQ(axis.maximum, c.axis_maximum);
    EXPECT_EQ(axis.intervals, c.intervals);
    EXPECT_EQ(axis.Label(1), c.second_label);
    EXPECT_EQ(axis.Label(axis.intervals), c.last_label);
  }
}

TEST(ValueAxisTest, TheTickAtZeroIsZero) {
  const ValueAxis axis = ValueAxis::For(-0.35, 0.05);
  EXPECT_EQ(axis.ZeroTick(), 7U);
  EXPECT_EQ(axis.Tick(7), 0.0);
  EXPECT_EQ(axis.Label(7), u"0.00");
  EXPECT_EQ(ValueAxis::For(0, 9).ZeroTick(), 0U);
}

TEST(ValueAxisTest, EveryRangeHasAnAxis) {
  for (double maximum : {5e-324, 1e-310, 1e-30, 1e30, 1e299, 1e300}) {
    const ValueAxis axis = ValueAxis::For(0, maximum);
    EXPECT_GE(axis.intervals, 1U) << maximum;
    EXPECT_LE(axis.intervals, 10U) << maximum;
    EXPECT_GE(axis.maximum, maximum);
  }
  const ValueAxis wide = ValueAxis::For(-1e300, 1e300);
  EXPECT_LE(wide.Place(0), 0.51);
}

TEST(ValueAxisTest, PlacesValuesUpToTheTop) {
  const ValueAxis axis = ValueAxis::For(0, 100);
  EXPECT_DOUBLE_EQ(axis.Place(0), 0);
  EXPECT_DOUBLE_EQ(axis.Place(25), 0.25);
  EXPECT_DOUBLE_EQ(axis.Place(400), 1);
}

}  // namespace
}  // namespace orvo::test

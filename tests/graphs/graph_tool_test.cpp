#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include "graphs/gdiplus_graph_tool.h"
#include "platform/bitmap.h"
#include "platform/path.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

constexpr double kMissing = CZxGraphDataStorage::kMissing;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr Argb kWhite = 0xFFFFFFFF;

/// A series of these points.
void Fill(CZxGraphDataStorage* data, std::uint32_t series, const std::vector<double>& points) {
  if (series == 0) data->SetPointCount(static_cast<std::uint32_t>(points.size()));
  data->EnsureSeries(series, u"series");
  for (double point : points) data->SetValue(series, data->AdvanceCursor(), point);
}

class GraphToolTest : public testing::Test {
 protected:
  std::u16string Path(const std::string& name = "chart.png") const { return PathFromSystem(folder_.Path(name)); }

  Bitmap Render(const CZxGraphDataStorage* data, std::int32_t kind, int width = 310, int height = 190) {
    CZxGDIPlusGraphTool tool;
    tool.chartKind = kind;
    tool.SetPlotBackground(false, 0);
    tool.SetFrame(false, 0);
    tool.SetTitle(title_);
    tool.SetShowLegend(legend_);
    tool.AttachStorage(data);
    tool.ComputeRange();
    EXPECT_EQ(tool.RenderToFile(u"png", Path().c_str(), width, height), S_OK);
    Bitmap bitmap;
    EXPECT_EQ(Bitmap::Load(Path(), &bitmap), S_OK);
    EXPECT_EQ(bitmap.width(), width);
    EXPECT_EQ(bitmap.height(), height);
    return bitmap;
  }

  TemporaryFolder folder_;
  std::u16string title_;
  bool legend_ = false;
};

/// How many pixels of a part of the picture are near a colour: lines mix with what is behind their edges.
int Count(const Bitmap& bitmap, const RectF& part, Argb colour, int tolerance = 120) {
  int count = 0;
  for (int y = static_cast<int>(part.y); y < static_cast<int>(part.bottom()); ++y) {
    for (int x = static_cast<int>(part.x); x < static_cast<int>(part.right()); ++x) {
      const Argb pixel = bitmap.PixelAt(x, y);
      int distance = 0;
      for (int shift : {0, 8, 16}) {
        distance += std::abs(static_cast<int>(pixel >> shift & 0xFF) - static_cast<int>(colour >> shift & 0xFF));
      }
      count += distance <= tolerance;
    }
  }
  return count;
}

RectF All(const Bitmap& bitmap) {
  return {0, 0, static_cast<double>(bitmap.width()), static_cast<double>(bitmap.height())};
}

/// The first two colours of the palette, a quarter of white in them.
constexpr Argb kBlue = 0xFF3F3FCF;
constexpr Argb kGreen = 0xFF9EB73F;

TEST_F(GraphToolTest, RangesContainZeroAndNothingMissing) {
  const std::tuple<std::vector<double>, double, double> cases[] = {
      {{3, 9, kMissing, 4}, 0, 9},
      {{-3, kMissing, -8}, -8, 0},
      {{kNan, kInfinity, -kInfinity, 2}, 0, 2},
      {{kMissing, kMissing}, 0, 0},
  };
  for (const auto& [points, minimum, maximum] : cases) {
    CZxGraphDataStorage data;
    Fill(&data, 0, points);
    CZxGDIPlusGraphTool tool;
    tool.chartKind = kChartOverTime;
    EXPECT_EQ(tool.maximum(), 1.0);
    tool.ComputeRange();
    EXPECT_EQ(tool.maximum(), 1.0) << "without a storage nothing changes";
    tool.AttachStorage(&data);
    tool.ComputeRange();
    EXPECT_EQ(tool.minimum(), minimum);
    EXPECT_EQ(tool.maximum(), maximum);
  }
}

TEST_F(GraphToolTest, ASharePieRangesOverPercent) {
  CZxGraphDataStorage data;
  Fill(&data, 0, {30});
  Fill(&data, 1, {90});
  CZxGDIPlusGraphTool tool;
  tool.chartKind = kChartSharePie;
  tool.AttachStorage(&data);
  tool.ComputeRange();
  EXPECT_DOUBLE_EQ(tool.maximum(), 75);
  EXPECT_EQ(tool.minimum(), 0);
  tool.SetFixedRange(true, 40);
  tool.ComputeRange();
  EXPECT_EQ(tool.maximum(), 40);
}

TEST_F(GraphToolTest, FailuresHaveTheirStatusAndLeaveNoFile) {
  CZxGDIPlusGraphTool tool;
  const std::u16string path = Path();
  EXPECT_EQ(tool.RenderToFile(u"png", nullptr, 100, 100), E_INVALIDARG);
  EXPECT_EQ(tool.RenderToFile(nullptr, path.c_str(), 100, 100), E_INVALIDARG);
  EXPECT_EQ(tool.RenderToFile(u"jpeg", path.c_str(), 100, 100), E_FAIL);
  EXPECT_EQ(tool.RenderToFile(u"", path.c_str(), 100, 100), E_FAIL);
  const int most = std::numeric_limits<int>::max();
  for (auto [width, height] : {std::pair(0, 100), {100, 0}, {-5, -5}, {most, most}, {most, 1}}) {
    EXPECT_EQ(tool.RenderToFile(u"png", path.c_str(), width, height), E_FAIL) << width << " x " << height;
  }
  EXPECT_EQ(tool.RenderToFile(u"png", Path("none/chart.png").c_str(), 100, 100), StatusFromError(kErrorPathNotFound));
  EXPECT_THAT(folder_.Names(), testing::IsEmpty());
}

TEST_F(GraphToolTest, AChartWithoutDataHasItsTitle) {
  title_ = u"Nothing";
  legend_ = true;
  const CZxGraphDataStorage empty;
  for (const CZxGraphDataStorage* data : {static_cast<const CZxGraphDataStorage*>(nullptr), &empty}) {
    for (std::int32_t kind : {0, 1, 4, 6}) {
      const Bitmap bitmap = Render(data, kind);
      EXPECT_GT(Count(bitmap, {100, 8, 110, 22}, 0xFF000000), 20) << "kind " << kind;
      EXPECT_EQ(Count(bitmap, All(bitmap), kBlue), 0);
    }
  }
}

TEST_F(GraphToolTest, LinesFollowTheirValues) {
  CZxGraphDataStorage data;
  Fill(&data, 0, {10, 10, 10});
  Fill(&data, 1, {0, 0, 0});
  const Bitmap bitmap = Render(&data, kChartOverTime);
  EXPECT_GT(Count(bitmap, {60, 30, 200, 20}, kBlue), 150) << "at the top";
  EXPECT_EQ(Count(bitmap, {60, 60, 240, 130}, kBlue), 0);
  EXPECT_GT(Count(bitmap, {60, 165, 200, 24}, kGreen), 150) << "at the bottom";
  EXPECT_EQ(Count(bitmap, {60, 30, 240, 120}, kGreen), 0);
}

TEST_F(GraphToolTest, SeriesOfManyPointsAreDrawnSoonAndInFull) {
  CZxGraphDataStorage data;
  std::vector<double> points(1'000'000);
  for (std::size_t i = 0; i < points.size(); ++i) points[i] = i % 1000 == 500 ? 10 : i % 2 == 0 ? 1 : 2;
  Fill(&data, 0, points);
  const Bitmap bitmap = Render(&data, kChartOverTime);
  EXPECT_GT(Count(bitmap, {60, 40, 230, 100}, kBlue), 20'000) << "every column has a peak";
}

TEST_F(GraphToolTest, MissingValuesAreLeftOut) {
  CZxGraphDataStorage data;
  std::vector<double> points(100, 5);
  for (std::size_t i = 40; i < 60; ++i) points[i] = i % 2 == 0 ? kMissing : kNan;
  points[70] = kInfinity;
  Fill(&data, 0, points);
  const Bitmap bitmap = Render(&data, kChartOverTime);
  EXPECT_GT(Count(bitmap, {50, 30, 80, 150}, kBlue), 70);
  EXPECT_EQ(Count(bitmap, {150, 30, 20, 150}, kBlue), 0) << "the gap";
  EXPECT_GT(Count(bitmap, {215, 30, 80, 150}, kBlue), 70);
}

TEST_F(GraphToolTest, SlicesHaveTheirColours) {
  CZxGraphDataStorage data;
  Fill(&data, 0, {50});
  Fill(&data, 1, {50});
  for (ChartKind kind : {kChartNamedPie, kChartSharePie}) {
    const Bitmap bitmap = Render(&data, kind);
    const RectF left{115, 60, 36, 80}, right{159, 60, 36, 80};
    EXPECT_GT(Count(bitmap, right, kBlue), 2000) << "the first slice begins at the top and goes to the right";
    EXPECT_GT(Count(bitmap, left, kGreen), 2000);
    EXPECT_EQ(Count(bitmap, left, kBlue) + Count(bitmap, right, kGreen), 0);
  }
}

TEST_F(GraphToolTest, TheLegendStandsInABlackBox) {
  legend_ = true;
  CZxGraphDataStorage data;
  Fill(&data, 0, {1, 2, 3});
  const Bitmap bitmap = Render(&data, kChartOverTime);
  int longest = 0;
  for (int y = 160; y < 190; ++y) {
    int run = 0;
    for (int x = 0; x < 310; ++x) {
      run = bitmap.PixelAt(x, y) == 0xFF000000 ? run + 1 : 0;
      longest = std::max(longest, run);
    }
  }
  EXPECT_GT(longest, 40);
  EXPECT_LT(longest, 290);
  EXPECT_GT(Count(bitmap, {0, 165, 310, 20}, kBlue), 25) << "the mark of the series";
}

TEST_F(GraphToolTest, NamesStayInsideOfTheLegend) {
  legend_ = true;
  CZxGraphDataStorage data;
  data.SetPointCount(1);
  const std::u16string thin(100, u'i');
  for (std::uint32_t series = 0; series < 12; ++series) data.EnsureSeries(series, u"Wrt"[series % 3] + thin);
  const Bitmap bitmap = Render(&data, kChartOverTime);
  int right = 309, bottom = 189;
  while (right > 200 && bitmap.PixelAt(right, 160) != 0xFF000000) --right;
  while (bottom > 160 && bitmap.PixelAt(right, bottom) != 0xFF000000) --bottom;
  ASSERT_GT(bottom, 165);
  EXPECT_EQ(Count(bitmap, {right - 1.0, bottom - 30.0, 1, 30}, kWhite, 0), 30) << "beside the frame";
}

TEST_F(GraphToolTest, NothingReachesTheEdgeOfThePicture) {
  title_ = std::u16string(200, u'T');
  legend_ = true;
  for (std::uint32_t series : {1U, 12U, 60U}) {
    CZxGraphDataStorage data;
    data.SetPointCount(40);
    for (std::uint32_t s = 0; s < series; ++s) {
      data.EnsureSeries(s, s % 2 == 0 ? std::u16string(80, u'W') : u"\u05E9\u05DC\u05D5\u05DD");
      for (std::uint32_t p = 0; p < 40; ++p) {
        const std::uint32_t slot = data.AdvanceCursor();
        data.SetValue(s, slot, 1e12 * std::sin(p + s));
        if (p % 10 == 0) data.SetPointLabel(slot, u"11/23/2026 14:05:09");
      }
    }
    for (std::int32_t kind : {1, 4, 6}) {
      for (auto [width, height] :
           {std::pair(310, 190), {495, 180}, {744, 556}, {120, 90}, {60, 40}, {20, 20}, {11, 11}, {1, 1}}) {
        const Bitmap bitmap = Render(&data, kind, width, height);
        if (width < 100) continue;
        SCOPED_TRACE(testing::Message() << series << " series, kind " << kind << ", " << width << " x " << height);
        const double w = width, h = height;
        for (const RectF& edge : {RectF{0, 0, w, 5}, {0, 0, 5, h}, {w - 5, 0, 5, h}, {0, h - 3, w, 3}}) {
          EXPECT_EQ(Count(bitmap, edge, kWhite, 0), static_cast<int>(edge.width * edge.height));
        }
      }
    }
  }
}

}  // namespace
}  // namespace orvo::test

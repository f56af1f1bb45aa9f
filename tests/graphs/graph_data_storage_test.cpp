#include "graphs/graph_data_storage.h"

#include <gmock/gmock.h>

#include "platform/error.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;

constexpr double kMissing = CZxGraphDataStorage::kMissing;

std::vector<double> PointsOf(const CZxGraphDataStorage& data, std::uint32_t series) {
  std::vector<double> points;
  for (std::uint32_t p = 0; p < data.SeriesValueCount(series); ++p) points.push_back(data.GetValue(series, p));
  return points;
}

void Append(CZxGraphDataStorage* data, int samples) {
  for (int i = 0; i < samples; ++i) {
    const std::uint32_t slot = data->AdvanceCursor();
    data->SetValue(0, slot, i);
    data->SetPointLabel(slot, i % 2 == 0 ? u"even" : u"");
  }
}

TEST(GraphDataStorageTest, NewestSampleIsTheLastPoint) {
  CZxGraphDataStorage data;
  data.EnsureSeries(0, u"rate");
  data.SetPointCount(5);
  Append(&data, 3);
  EXPECT_THAT(PointsOf(data, 0), ElementsAre(kMissing, kMissing, 0, 1, 2));
  EXPECT_EQ(data.GetPointLabel(1), u"");
  EXPECT_EQ(data.GetPointLabel(2), u"even");
  EXPECT_EQ(data.GetPointLabel(4), u"even");

  data.SetPointCount(5);
  Append(&data, 7);
  EXPECT_THAT(PointsOf(data, 0), ElementsAre(2, 3, 4, 5, 6));
}

TEST(GraphDataStorageTest, TheFirstSampleGoesIntoTheLastSlot) {
  CZxGraphDataStorage data;
  data.SetPointCount(3);
  EXPECT_EQ(data.AdvanceCursor(), 2U);
  EXPECT_EQ(data.AdvanceCursor(), 0U);
  EXPECT_EQ(data.AdvanceCursor(), 1U);
  EXPECT_EQ(data.AdvanceCursor(), 2U);
}

TEST(GraphDataStorageTest, SeriesMadeAfterThePointsHoldZeros) {
  CZxGraphDataStorage data;
  data.SetPointCount(2);
  data.EnsureSeries(3, u"fourth");
  const Argb colours[] = {0xC00000C0, 0xC07F9F00, 0xC0D40000, 0xC033FFFF};
  ASSERT_EQ(data.SeriesCount(), 4U);
  for (std::uint32_t i = 0; i < 4; ++i) {
    EXPECT_EQ(data.SeriesColour(i), colours[i]);
    EXPECT_EQ(data.HasSeries(i), i == 3);
  }
  EXPECT_THAT(PointsOf(data, 3), ElementsAre(0, 0));
  EXPECT_EQ(data.Dimensions(), std::pair(4U, 2U));

  data.SetValue(3, 0, 7);
  data.EnsureSeries(3, u"another name");
  EXPECT_EQ(data.SeriesName(3), u"fourth");
  EXPECT_THAT(PointsOf(data, 3), testing::Contains(7));
  data.EnsureSeries(23, u"");
  EXPECT_EQ(data.SeriesColour(23), data.SeriesColour(0));
}

TEST(GraphDataStorageTest, ResettingASeriesRestartsTheRing) {
  CZxGraphDataStorage data;
  data.SetPointCount(3);
  data.EnsureSeries(0, u"rate");
  Append(&data, 2);
  data.ResetSeries(0, 4.5);
  EXPECT_THAT(PointsOf(data, 0), ElementsAre(4.5, 4.5, 4.5));
  EXPECT_EQ(data.GetPointLabel(2), u"");
  EXPECT_EQ(data.AdvanceCursor(), 2U);
  data.ResetSeries(9, 1);
  EXPECT_EQ(data.AdvanceCursor(), 0U) << "an unknown series restarts nothing";
}

TEST(GraphDataStorageTest, WhatDoesNotExistIsIgnoredOrEmpty) {
  CZxGraphDataStorage data;
  data.SetPointCount(0);
  data.EnsureSeries(0, u"none");
  data.SetValue(0, 0, 1);
  data.SetValue(5, 0, 1);
  data.SetPointLabel(0, u"text");
  EXPECT_EQ(data.AdvanceCursor(), 0U);
  EXPECT_EQ(data.SeriesValueCount(0), 0U);
  EXPECT_EQ(data.GetValue(0, 0), 0.0);
  EXPECT_EQ(data.GetPointLabel(0), u"");
  EXPECT_EQ(data.SeriesColour(1), 0U);
  EXPECT_FALSE(data.HasSeries(1));
  data.SetPointCount(2);
  EXPECT_EQ(data.GetValue(0, 0xFFFFFFFF), 0.0);
}

TEST(GraphDataStorageTest, CallerErrorsAreRaised) {
  CZxGraphDataStorage data;
  EXPECT_EQ(Guard([&] { (void)data.SeriesName(0); }), E_INVALIDARG);
  data.SetPointCount(2);
  for (std::uint32_t series : {CZxGraphDataStorage::kMostSeries, 0xFFFFFFFFU}) {
    EXPECT_EQ(Guard([&] { data.EnsureSeries(series, u""); }), E_OUTOFMEMORY);
  }
  EXPECT_EQ(data.SeriesCount(), 0U);
  data.EnsureSeries(0, u"rate");
  EXPECT_EQ(Guard([&] { data.SetPointCount(0xFFFFFFFF); }), E_OUTOFMEMORY);
  EXPECT_THAT(PointsOf(data, 0), ElementsAre(0, 0));
  EXPECT_EQ(data.GetPointLabel(1), u"");
}

}  // namespace
}  // namespace orvo::test

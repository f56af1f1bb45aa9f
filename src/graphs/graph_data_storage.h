#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/drawing.h"

namespace orvo {

/// The numbers of one chart: series with one value for each point, and a label for some of the points. The points form
/// a ring: samples are appended through a cursor, and readers see the newest one at the last point, older ones to its
/// left in order. When more samples are written than there are points, the newest remain.
///
/// Whoever writes speaks of slots, which stay where they are; whoever reads speaks of points, 0 at the left.
class CZxGraphDataStorage {
 public:
  /// Marks a point without data.
  static constexpr double kMissing = -1.7e308;
  /// More than any chart can show, and no more than is drawn within seconds; asking for more is out of memory.
  static constexpr std::uint32_t kMostSeries = 4'096;
  static constexpr std::uint32_t kMostPoints = 1'048'576;

  CZxGraphDataStorage() = default;
  virtual ~CZxGraphDataStorage() = default;
  CZxGraphDataStorage(const CZxGraphDataStorage&) = delete;
  CZxGraphDataStorage& operator=(const CZxGraphDataStorage&) = delete;

  /// Begins anew with `count` points: no labels, and missing values in every series that there is. The first sample
  /// goes into the last slot. Raises E_OUTOFMEMORY for more than kMostPoints, and then leaves all as it was.
  void SetPointCount(std::uint32_t count);
  /// Makes the series and all before it, each in its colour of the palette. A series without values yet gets the name,
  /// and 0.0 for every point. Raises E_OUTOFMEMORY.
  void EnsureSeries(std::uint32_t series, std::u16string_view name);
  /// Gives every point of a series the same value, takes all labels away, and puts the cursor back to where
  /// SetPointCount left it. Does nothing for a series that does not exist.
  void ResetSeries(std::uint32_t series, double value);
  /// The slot for the next sample, which thereby becomes the last point. 0 when there are no points.
  std::uint32_t AdvanceCursor();
  /// Both are ignored when there is no such series or slot.
  void SetValue(std::uint32_t series, std::uint32_t slot, double value);
  void SetPointLabel(std::uint32_t slot, std::u16string_view text);

  std::uint32_t SeriesCount() const { return static_cast<std::uint32_t>(series_.size()); }
  /// The number of series, and the most values that any of them has.
  std::pair<std::uint32_t, std::uint32_t> Dimensions() const;
  /// Whether the series exists and has values.
  bool HasSeries(std::uint32_t series) const;
  /// 0 for a series that does not exist, as the next.
  std::uint32_t SeriesValueCount(std::uint32_t series) const;
  Argb SeriesColour(std::uint32_t series) const;
  /// Empty for a series without a name. Raises E_INVALIDARG for one that does not exist.
  const std::u16string& SeriesName(std::uint32_t series) const;
  /// 0.0 for a series or point that does not exist.
  double GetValue(std::uint32_t series, std::uint32_t point) const;
  /// Empty for a point without a label.
  const std::u16string& GetPointLabel(std::uint32_t point) const;

 private:
  struct Series {
    std::vector<double> values;
    std::u16string name;
    Argb colour = 0;
    bool created = false;
  };

  void RestartRing();

  std::uint32_t points_ = 0;
  std::uint32_t cursor_ = 0;
  std::vector<std::u16string> labels_;
  std::vector<Series> series_;
};

}  // namespace orvo

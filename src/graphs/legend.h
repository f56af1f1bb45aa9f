#pragma once

#include <cstdint>
#include <vector>

#include "graphs/graph_data_storage.h"
#include "platform/canvas.h"

namespace orvo {

/// The names and colours of the series that have values, in a box: entries run down the columns, which are spaced
/// evenly over its width. A name that is too long for its column is cut with "…"; when there is no room for all
/// entries, the last place says how many are left out.
class Legend {
 public:
  /// Raises std::bad_alloc.
  explicit Legend(const CZxGraphDataStorage& storage);

  bool empty() const { return entries_.empty(); }

  /// Where the entries go. Width and height are of the box.
  struct Arrangement {
    std::uint32_t rows = 0;
    std::uint32_t columns = 0;
    double width = 0;
    double height = 0;
  };
  /// As wide as need be, in as few rows as possible: below a chart. Nothing when not even one entry has room.
  Arrangement Flat(double most_width, double most_height) const;
  /// As high as need be, in as few columns as possible: beside a chart.
  Arrangement Tall(double most_width, double most_height) const;

  void Draw(Canvas* canvas, PointF corner, const Arrangement& arrangement) const;

 private:
  struct Entry {
    Argb colour = 0;
    const std::u16string* name = nullptr;
    double width = 0;  ///< of the name
  };

  double EntryWidth() const;
  std::uint32_t RowsFor(double height) const;
  std::uint32_t ColumnsFor(double width, double entry_width) const;
  Arrangement Box(std::uint32_t rows, std::uint32_t columns, double most_width) const;

  std::vector<Entry> entries_;
  FontMetrics font_;
  double line_ = 0;  ///< height of an entry
};

}  // namespace orvo

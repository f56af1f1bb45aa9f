#include "graphs/graph_data_storage.h"

#include <algorithm>
#include <array>
#include <new>

#include "platform/error.h"

namespace orvo {
namespace {

constexpr std::array<Argb, 23> kPalette{
    0x0000C0, 0x7F9F00, 0xD40000, 0x33FFFF, 0x33FF00, 0xFF00CC, 0x3399FF, 0x2A5FAA,
    0x550055, 0x7F3F00, 0xFF0033, 0x008000, 0x800000, 0x008080, 0x000080, 0x800080,
    0x7F0055, 0xD47F00, 0x00BF00, 0x00BFAA, 0x007FAA, 0x5500AA, 0x0000FF,
};
constexpr Argb kSeriesAlpha = 0xC0000000;

}  // namespace

void CZxGraphDataStorage::RestartRing() {
  cursor_ = points_ == 0 ? 0 : points_ - 1;
  labels_.assign(points_, {});
}

void CZxGraphDataStorage::SetPointCount(std::uint32_t count) {
  if (count > kMostPoints) Raise(E_OUTOFMEMORY);
  points_ = count;
  RestartRing();
  for (Series& series : series_) {
    if (series.created) series.values.assign(count, kMissing);
  }
}

void CZxGraphDataStorage::EnsureSeries(std::uint32_t series, std::u16string_view name) {
  if (series >= kMostSeries) Raise(E_OUTOFMEMORY);
  try {
    while (series_.size() <= series) {
      const Argb colour = kPalette[series_.size() % kPalette.size()];
      series_.emplace_back().colour = kSeriesAlpha | colour;
    }
    Series& ensured = series_[series];
    if (ensured.created) return;
    ensured.values.assign(points_, 0.0);
    ensured.name = name;
    ensured.created = true;
  } catch (const std::bad_alloc&) {
    Raise(E_OUTOFMEMORY);
  }
}

void CZxGraphDataStorage::ResetSeries(std::uint32_t series, double value) {
  if (series >= series_.size()) return;
  series_[series].values.assign(points_, value);
  series_[series].created = true;
  RestartRing();
}

std::uint32_t CZxGraphDataStorage::AdvanceCursor() {
  const std::uint32_t slot = cursor_;
  cursor_ = cursor_ + 1 < points_ ? cursor_ + 1 : 0;
  return slot;
}

void CZxGraphDataStorage::SetValue(std::uint32_t series, std::uint32_t slot, double value) {
  if (slot < SeriesValueCount(series)) series_[series].values[slot] = value;
}

void CZxGraphDataStorage::SetPointLabel(std::uint32_t slot, std::u16string_view text) {
  if (slot < labels_.size()) labels_[slot] = text;
}

std::pair<std::uint32_t, std::uint32_t> CZxGraphDataStorage::Dimensions() const {
  std::uint32_t most = 0;
  for (std::uint32_t series = 0; series < SeriesCount(); ++series) most = std::max(most, SeriesValueCount(series));
  return {SeriesCount(), most};
}

bool CZxGraphDataStorage::HasSeries(std::uint32_t series) const {
  return series < series_.size() && series_[series].created;
}

std::uint32_t CZxGraphDataStorage::SeriesValueCount(std::uint32_t series) const {
  return series < series_.size() ? static_cast<std::uint32_t>(series_[series].values.size()) : 0;
}

Argb CZxGraphDataStorage::SeriesColour(std::uint32_t series) const {
  return series < series_.size() ? series_[series].colour : 0;
}

const std::u16string& CZxGraphDataStorage::SeriesName(std::uint32_t series) const {
  if (series >= series_.size()) Raise(E_INVALIDARG);
  return series_[series].name;
}

double CZxGraphDataStorage::GetValue(std::uint32_t series, std::uint32_t point) const {
  std::uint64_t slot = std::uint64_t{cursor_} + point;
  if (slot >= points_) slot -= points_;
  return slot < SeriesValueCount(series) ? series_[series].values[slot] : 0.0;
}

const std::u16string& CZxGraphDataStorage::GetPointLabel(std::uint32_t point) const {
  static const std::u16string none;
  return points_ == 0 ? none : labels_[(std::uint64_t{cursor_} + point) % points_];
}

}  // namespace orvo

#include "capture/context/traffic_views.h"

#include <vector>

#include "engine/traffic.h"
#include "platform/object.h"

namespace orvo {
namespace {

class HistoryView final : public Object<ITrafficHistory> {
 public:
  explicit HistoryView(const FrozenHistory& history) : interval_(history.interval), start_(history.start) {
    for (std::uint64_t bytes : history.Samples()) rates_.push_back(static_cast<double>(bytes) / interval_);
  }

  Status GetSamples(const double** values, std::uint32_t* count) override {
    if (!values || !count) return E_POINTER;
    *values = rates_.data();
    *count = static_cast<std::uint32_t>(rates_.size());
    return S_OK;
  }
  Status GetInterval(std::uint32_t* seconds) override {
    if (!seconds) return E_POINTER;
    *seconds = interval_;
    return S_OK;
  }
  Status GetStartTime(std::uint64_t* time) override {
    if (!time) return E_POINTER;
    *time = start_;
    return S_OK;
  }

 private:
  std::vector<double> rates_;
  std::uint32_t interval_;
  std::uint64_t start_;
};

class SizeView final : public Object<ISizeStats> {
 public:
  SizeView(const SizeCounts& counts, bool is_wireless)
      : scheme_(is_wireless ? kSizesWireless : ChooseSizeScheme(counts)), buckets_(SizeBuckets(counts, scheme_)) {}

  Status GetScheme(std::uint32_t* scheme) override {
    if (!scheme) return E_POINTER;
    *scheme = scheme_;
    return S_OK;
  }
  Status GetBuckets(const std::uint64_t** packets, std::uint32_t* count) override {
    if (!packets || !count) return E_POINTER;
    *packets = buckets_.data();
    *count = static_cast<std::uint32_t>(buckets_.size());
    return S_OK;
  }

 private:
  SizeScheme scheme_;
  std::vector<std::uint64_t> buckets_;
};

}  // namespace

ComPtr<IUnknown> MakeTrafficHistory(const EpochPtr& epoch) {
  return ComPtr<IUnknown>(MakeObject<HistoryView>(epoch->tables->history).get());
}

ComPtr<IUnknown> MakeSizeStats(const EpochPtr& epoch) {
  return ComPtr<IUnknown>(
      MakeObject<SizeView>(epoch->tables->counters.sizes, IsWirelessSubtype(epoch->medium_subtype)).get());
}

}  // namespace orvo

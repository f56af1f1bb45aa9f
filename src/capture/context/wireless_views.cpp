#include "capture/context/wireless_views.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <vector>

#include "engine/wireless.h"
#include "platform/object.h"

namespace orvo {
namespace {

/// The lists of rates as arrays, each in the order of the rates, all in one piece.
class RateArrays {
 public:
  template <class Row>
  RateArrays(const FrozenTable<Row>& owners, const FrozenTable<RateRow>& rates) {
    begins_.reserve(owners.size() + 1);
    rates_.reserve(rates.size());
    for (std::size_t i = 0; i < owners.size(); ++i) {
      const auto begin = static_cast<std::ptrdiff_t>(rates_.size());
      begins_.push_back(rates_.size());
      for (std::uint32_t row = owners[i].first_rate; row != kNoRow; row = rates[row].next) {
        rates_.push_back(rates[row].rate);
      }
      std::ranges::sort(rates_.begin() + begin, rates_.end(), {}, &WirelessRate::rate);
    }
    begins_.push_back(rates_.size());
  }

  void Give(std::size_t owner, const WirelessRate** rates, std::uint32_t* count) const {
    *count = static_cast<std::uint32_t>(begins_[owner + 1] - begins_[owner]);
    *rates = *count == 0 ? nullptr : rates_.data() + begins_[owner];
  }

 private:
  std::vector<std::size_t> begins_;
  std::vector<WirelessRate> rates_;
};

class WirelessNodeView final : public Object<IWirelessNodeStats> {
 public:
  explicit WirelessNodeView(EpochPtr epoch)
      : epoch_(std::move(epoch)), nodes_(epoch_->wireless->nodes), rates_(nodes_.rows, nodes_.rates) {}

  Status GetCount(std::uint32_t* count) override {
    if (!count) return E_POINTER;
    *count = static_cast<std::uint32_t>(nodes_.rows.size());
    return S_OK;
  }
  Status GetEntry(std::uint32_t index, const WirelessNodeEntry** entry) override {
    if (!entry) return E_POINTER;
    *entry = index < nodes_.rows.size() ? &nodes_.rows[index].entry : nullptr;
    return *entry ? S_OK : E_INVALIDARG;
  }
  Status GetExcluded(std::uint32_t* first, std::uint32_t* second) override {
    if (!first || !second) return E_POINTER;
    *first = WirelessNodeTable::kNoNetwork;
    *second = WirelessNodeTable::kNoName;
    return S_OK;
  }
  Status GetCounts(WirelessCounts* counts) override {
    if (!counts) return E_POINTER;
    *counts = nodes_.counts;
    return S_OK;
  }
  Status GetAssociationCount(std::uint32_t* count) override {
    if (!count) return E_POINTER;
    *count = static_cast<std::uint32_t>(nodes_.associations.size());
    return S_OK;
  }
  Status GetAssociation(std::uint32_t index, const WirelessAssociation** association) override {
    if (!association) return E_POINTER;
    *association = index < nodes_.associations.size() ? &nodes_.associations[index] : nullptr;
    return *association ? S_OK : E_INVALIDARG;
  }
  Status GetRates(std::uint32_t index, const WirelessRate** rates, std::uint32_t* count) override {
    if (!rates || !count) return E_POINTER;
    *rates = nullptr;
    *count = 0;
    if (index >= nodes_.rows.size()) return E_INVALIDARG;
    rates_.Give(index, rates, count);
    return S_OK;
  }

 private:
  EpochPtr epoch_;
  const FrozenWirelessNodes& nodes_;
  RateArrays rates_;
};

class WirelessChannelView final : public Object<IWirelessChannelStats> {
 public:
  explicit WirelessChannelView(EpochPtr epoch)
      : epoch_(std::move(epoch)),
        channels_(epoch_->wireless->channels),
        rates_(channels_.rows, channels_.rates),
        order_(channels_.rows.size()) {
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    std::ranges::sort(order_, {}, [&](std::size_t row) {
      const WirelessChannelEntry& entry = channels_.rows[row].entry;
      return std::tuple(entry.frequency, entry.channel);
    });
  }

  Status GetCount(std::uint32_t* count) override {
    if (!count) return E_POINTER;
    *count = static_cast<std::uint32_t>(order_.size());
    return S_OK;
  }
  Status GetEntry(std::uint32_t index, const WirelessChannelEntry** entry) override {
    if (!entry) return E_POINTER;
    *entry = index < order_.size() ? &channels_.rows[order_[index]].entry : nullptr;
    return *entry ? S_OK : E_INVALIDARG;
  }
  Status GetRates(std::int32_t channel, std::uint32_t frequency, std::uint32_t band, const WirelessRate** rates,
                  std::uint32_t* count) override {
    if (!rates || !count) return E_POINTER;
    *rates = nullptr;
    *count = 0;
    for (std::size_t row : order_) {
      const WirelessChannelEntry& entry = channels_.rows[row].entry;
      if (entry.channel != channel || entry.frequency != frequency || entry.band != band) continue;
      rates_.Give(row, rates, count);
      break;
    }
    return S_OK;
  }

 private:
  EpochPtr epoch_;
  const FrozenWirelessChannels& channels_;
  RateArrays rates_;
  std::vector<std::size_t> order_;
};

template <class View>
ComPtr<IUnknown> MakeView(const EpochPtr& epoch) {
  if (!epoch->wireless) return nullptr;
  return ComPtr<IUnknown>(MakeObject<View>(epoch).get());
}

}  // namespace

ComPtr<IUnknown> MakeWirelessNodeStats(const EpochPtr& epoch) {
  return MakeView<WirelessNodeView>(epoch);
}

ComPtr<IUnknown> MakeWirelessChannelStats(const EpochPtr& epoch) {
  return MakeView<WirelessChannelView>(epoch);
}

}  // namespace orvo

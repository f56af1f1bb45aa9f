#pragma once

#include <cstdint>

namespace orvo {

/// Stands for "no item" in a RecencyList.
inline constexpr std::uint32_t kNoItem = 0xFFFFFFFF;

/// Items of a table in the order in which they were last used. The items are the table's; each carries the two links
/// `older` and `newer`, and stands in at most one list at a time.
class RecencyList {
 public:
  /// The item that was not used for longest, or kNoItem.
  std::uint32_t oldest() const { return oldest_; }

  template <class Items>
  void Append(Items& items, std::uint32_t item) {
    items[item].older = newest_;
    items[item].newer = kNoItem;
    (newest_ == kNoItem ? oldest_ : items[newest_].newer) = item;
    newest_ = item;
  }

  template <class Items>
  void Remove(Items& items, std::uint32_t item) {
    std::uint32_t older = items[item].older;
    std::uint32_t newer = items[item].newer;
    (older == kNoItem ? oldest_ : items[older].newer) = newer;
    (newer == kNoItem ? newest_ : items[newer].older) = older;
  }

  template <class Items>
  void Touch(Items& items, std::uint32_t item) {
    if (item == newest_) return;
    Remove(items, item);
    Append(items, item);
  }

 private:
  std::uint32_t oldest_ = kNoItem;
  std::uint32_t newest_ = kNoItem;
};

}  // namespace orvo

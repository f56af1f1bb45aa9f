#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvo {

/// Stands for "no row".
inline constexpr std::uint32_t kNoRow = 0xFFFFFFFF;

/// Finds rows of a table by their hashes. The table keeps the keys; whoever looks up says which row is meant.
/// Open addressing with linear probing, at most half full; the low 32 bits of a hash are kept beside each row.
class RowIndex {
 public:
  template <class IsRow>
  std::uint32_t Find(std::uint64_t hash, IsRow is_row) const {
    auto tag = static_cast<std::uint32_t>(hash);
    for (std::size_t at = tag & mask_;; at = (at + 1) & mask_) {
      const Slot& slot = slots_[at];
      if (slot.row == kNoRow) return kNoRow;
      if (slot.tag == tag && is_row(slot.row)) return slot.row;
    }
  }

  /// Begins to fetch what Find will look at first.
  void Prefetch(std::uint64_t hash) const { __builtin_prefetch(&slots_[static_cast<std::uint32_t>(hash) & mask_]); }

  /// Makes room for one more row; after that Add does not fail.
  void Reserve() {
    if ((used_ + 1) * 2 > slots_.size()) Grow();
  }

  /// Adds a row that is not in the index.
  void Add(std::uint64_t hash, std::uint32_t row) noexcept {
    Put({static_cast<std::uint32_t>(hash), row});
    ++used_;
  }

 private:
  struct Slot {
    std::uint32_t tag = 0;
    std::uint32_t row = kNoRow;
  };

  void Put(Slot slot) noexcept {
    std::size_t at = slot.tag & mask_;
    while (slots_[at].row != kNoRow) at = (at + 1) & mask_;
    slots_[at] = slot;
  }

  void Grow() {
    std::vector<Slot> old(slots_.size() * 2);
    old.swap(slots_);
    mask_ = slots_.size() - 1;
    for (Slot slot : old) {
      if (slot.row != kNoRow) Put(slot);
    }
  }

  std::vector<Slot> slots_ = std::vector<Slot>(256);
  std::size_t mask_ = 255;
  std::size_t used_ = 0;
};

}  // namespace orvo

#pragma once

#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

#include "util/array_ex.h"

namespace orvo {

/// CArrayEx of values of one type.
template <class T>
class TArrayEx : public CArrayEx {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  explicit TArrayEx(std::unique_ptr<IComparator> comparator = nullptr, bool sorted_mode = false)
      : CArrayEx(sizeof(T), std::move(comparator), sorted_mode) {}

  using CArrayEx::Add;
  using CArrayEx::Find;
  std::int32_t Add(const T& value) { return Add(&value, sizeof value); }
  std::int32_t Find(const T& value) const { return Find(&value, sizeof value); }

  /// The value at an index below the count.
  T operator[](std::int32_t index) const {
    T value;
    std::memcpy(&value, ElementAt(index), sizeof value);
    return value;
  }
};

}  // namespace orvo

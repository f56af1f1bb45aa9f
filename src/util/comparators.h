#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace orvo {

/// The order of a sorted array's elements. Sizes are in bytes; a comparator never looks beyond them.
class IComparator {
 public:
  virtual ~IComparator() = default;
  /// Negative when a stands before b, positive when it stands behind, 0 when neither does.
  virtual int Compare(const void* a, const void* b, std::uint32_t size_a, std::uint32_t size_b) const = 0;
  virtual bool Equal(const void* a, const void* b, std::uint32_t size_a, std::uint32_t size_b) const = 0;
  /// The same for an element and a key. What a key points at is between the comparator and whoever searches by it; the
  /// comparators below take one of the element's size.
  virtual int CompareKey(const void* element, const void* key, std::uint32_t element_size) const = 0;
  virtual bool EqualKey(const void* element, const void* key, std::uint32_t element_size) const = 0;
};

/// Orders elements by their bytes, unsigned, up to the end of the shorter one: equal beginnings are equal. The results
/// are -1, 0 and 1.
class CComparator : public IComparator {
 public:
  int Compare(const void* a, const void* b, std::uint32_t size_a, std::uint32_t size_b) const override;
  bool Equal(const void* a, const void* b, std::uint32_t size_a, std::uint32_t size_b) const override;
  int CompareKey(const void* element, const void* key, std::uint32_t element_size) const override;
  bool EqualKey(const void* element, const void* key, std::uint32_t element_size) const override;
};

/// Orders integers by their value; one that is given with fewer bytes than it has lacks the bytes behind them.
template <class Integer>
class TIntComparator : public IComparator {
 public:
  int Compare(const void* a, const void* b, std::uint32_t size_a, std::uint32_t size_b) const override {
    const Integer first = Load(a, size_a);
    const Integer second = Load(b, size_b);
    return first < second ? -1 : static_cast<int>(first > second);
  }
  bool Equal(const void* a, const void* b, std::uint32_t size_a, std::uint32_t size_b) const override {
    return Load(a, size_a) == Load(b, size_b);
  }
  int CompareKey(const void* element, const void* key, std::uint32_t element_size) const override {
    return Compare(element, key, element_size, element_size);
  }
  bool EqualKey(const void* element, const void* key, std::uint32_t element_size) const override {
    return Equal(element, key, element_size, element_size);
  }

 private:
  static Integer Load(const void* bytes, std::uint32_t size) {
    Integer value = 0;
    std::memcpy(&value, bytes, std::min<std::size_t>(size, sizeof value));
    return value;
  }
};

}  // namespace orvo

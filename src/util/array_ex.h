#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "util/comparators.h"

namespace orvo {

/// A growable array of elements of one size, in one block of at most 4 GiB - 1 bytes.
///
/// In sorted mode the elements stay in the comparator's order: whatever is added goes to its place. Outside of it an
/// array can still be known to be sorted, from a sort to the first change that may break the order; a known order is
/// what lets Find search by bisection.
///
/// Indices and counts run from 0; kLast stands for the last element, and as a count for all up to it. Negative ones are
/// out of range. A value shorter than an element is filled up with zeros; it may lie in the array itself. Operations
/// that need room raise E_OUTOFMEMORY, and then the array is as it was.
class CArrayEx {
 public:
  static constexpr std::int32_t kLast = 0x7FFFFFFF;
  static constexpr std::int32_t kNone = -1;

  /// As the C library's qsort takes it.
  using SortFunction = int (*)(const void* a, const void* b);

  /// `element_size` is not 0. The array owns the comparator; without one it orders elements of 4 bytes as unsigned
  /// numbers and all others by their bytes.
  explicit CArrayEx(std::uint32_t element_size, std::unique_ptr<IComparator> comparator = nullptr,
                    bool sorted_mode = false);
  CArrayEx(const CArrayEx&) = delete;
  CArrayEx& operator=(const CArrayEx&) = delete;

  virtual ~CArrayEx();
  /// Cuts off, or adds elements of zeros; kLast and negative counts change nothing.
  virtual void SetCount(std::int32_t count);
  virtual std::uint32_t ElementSize() const;
  /// Null for an array without capacity. Valid until the next change.
  virtual void* Buffer() const;
  /// Copies min(*size, element size) bytes and leaves that number in `size`; false for an index out of range.
  virtual bool CopyElement(std::int32_t index, void* destination, std::uint32_t* size) const;
  /// Replaces an element by as many bytes at `value` as an element has; false for an index out of range. The place
  /// stays the same even in sorted mode: the order is restored by what is added next, or by Sort. False for a null
  /// value too.
  virtual bool SetElement(std::int32_t index, const void* value);
  /// Null for an index out of range. Valid until the next change.
  virtual void* ElementAt(std::int32_t index) const;
  /// Adds one element behind the last, in sorted mode at its place, and gives its index.
  virtual std::int32_t Add(const void* value, std::uint32_t size);
  /// Inserts copies of a value before an index (brought into the range from 0 to the count), in sorted mode at the
  /// value's place, and gives the index of the first. kNone for no copies, and in sorted mode for a null value;
  /// otherwise a null value stands for zeros.
  virtual std::int32_t Insert(std::int32_t count, std::int32_t index, const void* value, std::uint32_t size);
  /// Empties the array and frees its block.
  virtual void RemoveAll();
  virtual void Remove(std::int32_t count, std::int32_t index);
  /// Removes the element that Find finds; false when there is none.
  virtual bool RemoveValue(const void* value, std::uint32_t size);
  /// Overwrites elements from an index on, at most up to the last, and gives the index of the first. In sorted mode
  /// they are taken out and the value put in as often at its place. kNone when there is nothing to overwrite.
  virtual std::int32_t SetRange(std::int32_t count, std::int32_t index, const void* value, std::uint32_t size);
  /// Moves an element to stand right before or behind another one; false in sorted mode and out of range.
  virtual bool MoveBefore(std::int32_t index, std::int32_t other);
  virtual bool MoveAfter(std::int32_t index, std::int32_t other);
  /// Sorts by the comparator, after D. L. Shell with gaps of 1, 4, 13, 40 and so on. Elements that are equal may
  /// change places. An array of fewer than two elements, or known to be sorted, is left alone.
  virtual void Sort();
  /// Sorts by the sort function; without one, as Sort. The function has to agree with the comparator, as the array is
  /// known to be sorted afterwards.
  virtual void QuickSort();
  /// The index of an element that equals the value, the first one in a known order; kNone when there is none.
  virtual std::int32_t Find(const void* value, std::uint32_t size) const;
  virtual std::int32_t FindKey(const void* key) const;
  /// The index of the first element that does not stand before the value, the count when all do; kLast for an array
  /// that is empty or not known to be sorted.
  virtual std::int32_t LowerBound(const void* value, std::uint32_t size) const;
  virtual std::int32_t LowerBoundKey(const void* key) const;

  std::int32_t count() const { return static_cast<std::int32_t>(count_); }
  std::uint32_t used_bytes() const { return used_bytes_; }
  std::uint32_t capacity() const { return capacity_; }
  bool is_known_sorted() const { return known_sorted_; }
  void set_sort_function(SortFunction function) { sort_function_ = function; }

 protected:
  // The steps of which the operations above are made. They check nothing.

  /// Makes room for further elements.
  virtual void Reserve(std::uint32_t elements);
  virtual void CopyIn(std::uint32_t index, const void* value, std::uint32_t size);
  virtual void CopyOut(std::uint32_t index, void* destination, std::uint32_t size) const;
  virtual void Reallocate(std::uint32_t bytes);
  /// Adds elements of undefined content behind the last, or takes the last ones away together with their room.
  virtual void Grow(std::uint32_t elements);
  virtual void Shrink(std::uint32_t elements);
  virtual void MoveRange(std::uint32_t from, std::uint32_t to, std::uint32_t elements);
  virtual void Exchange(std::uint32_t first, std::uint32_t second);
  virtual void MoveElement(std::uint32_t from, std::uint32_t to);
  virtual std::uint32_t ElementSizeAt(std::uint32_t index) const;
  virtual std::uint32_t RangeBytes(std::uint32_t first, std::uint32_t last) const;

 private:
  std::byte* At(std::uint32_t index) const { return buffer_ + static_cast<std::size_t>(index) * element_size_; }
  bool Resolve(std::int32_t index, std::uint32_t* element) const;
  bool IsInOrderAt(std::uint32_t index) const;
  template <class IsBefore>
  std::uint32_t FirstNot(IsBefore is_before) const;
  template <class IsBefore, class Equals>
  std::int32_t Search(IsBefore is_before, Equals equals) const;
  void SortWithGap(std::uint32_t gap);

  std::uint32_t element_size_;
  std::uint32_t count_ = 0;
  std::uint32_t used_bytes_ = 0;
  std::uint32_t capacity_ = 0;
  bool sorted_mode_;
  bool known_sorted_;
  bool owns_comparator_;
  const IComparator* comparator_;
  SortFunction sort_function_ = nullptr;
  std::byte* buffer_ = nullptr;
};

}  // namespace orvo

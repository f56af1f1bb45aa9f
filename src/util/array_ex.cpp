#include "util/array_ex.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "platform/error.h"

namespace orvo {
namespace {

const CComparator kByteOrder;
const TIntComparator<std::uint32_t> kNumberOrder;

const IComparator* DefaultComparator(std::uint32_t element_size) {
  if (element_size == sizeof(std::uint32_t)) return &kNumberOrder;
  return &kByteOrder;
}

/// A value as the bytes of one element, kept apart from the array that is about to change.
std::vector<std::byte> ElementOf(const void* value, std::uint32_t size, std::uint32_t element_size) {
  std::vector<std::byte> element(element_size);
  if (value) std::memcpy(element.data(), value, std::min(size, element_size));
  return element;
}

}  // namespace

CArrayEx::CArrayEx(std::uint32_t element_size, std::unique_ptr<IComparator> comparator, bool sorted_mode)
    : element_size_(element_size),
      sorted_mode_(sorted_mode),
      known_sorted_(sorted_mode),
      owns_comparator_(comparator != nullptr),
      comparator_(comparator ? comparator.release() : DefaultComparator(element_size)) {}

CArrayEx::~CArrayEx() {
  std::free(buffer_);
  if (owns_comparator_) delete comparator_;
}

void CArrayEx::SetCount(std::int32_t count) {
  if (count < 0 || count == kLast) return;
  const auto wanted = static_cast<std::uint32_t>(count);
  if (wanted < count_) {
    Shrink(count_ - wanted);
  } else if (wanted > count_) {
    const std::uint32_t first = count_;
    Grow(wanted - count_);
    std::memset(At(first), 0, RangeBytes(first, wanted - 1));
    known_sorted_ = false;
  }
}

std::uint32_t CArrayEx::ElementSize() const {
  return element_size_;
}

void* CArrayEx::Buffer() const {
  return buffer_;
}

bool CArrayEx::CopyElement(std::int32_t index, void* destination, std::uint32_t* size) const {
  std::uint32_t element = 0;
  if (!Resolve(index, &element)) return false;
  *size = std::min(*size, element_size_);
  CopyOut(element, destination, *size);
  return true;
}

bool CArrayEx::SetElement(std::int32_t index, const void* value) {
  std::uint32_t element = 0;
  if (!value || !Resolve(index, &element)) return false;
  CopyIn(element, value, element_size_);
  known_sorted_ = known_sorted_ && IsInOrderAt(element);
  return true;
}

void* CArrayEx::ElementAt(std::int32_t index) const {
  std::uint32_t element = 0;
  return Resolve(index, &element) ? At(element) : nullptr;
}

std::int32_t CArrayEx::Add(const void* value, std::uint32_t size) {
  return Insert(1, kLast, value, size);
}

std::int32_t CArrayEx::Insert(std::int32_t count, std::int32_t index, const void* value, std::uint32_t size) {
  if (count <= 0 || (sorted_mode_ && !value)) return kNone;
  const std::vector<std::byte> element = ElementOf(value, size, element_size_);
  const auto copies = static_cast<std::uint32_t>(count);
  auto place = static_cast<std::uint32_t>(std::clamp(index, 0, this->count()));
  if (sorted_mode_) {
    if (!known_sorted_) Sort();
    place = FirstNot(
        [&](const void* at) { return comparator_->Compare(at, element.data(), element_size_, element_size_) < 0; });
  }
  const std::uint32_t behind = count_ - place;
  Grow(copies);
  if (behind != 0) MoveRange(place, place + copies, behind);
  for (std::uint32_t i = 0; i < copies; ++i) CopyIn(place + i, element.data(), element_size_);
  known_sorted_ = sorted_mode_;
  return static_cast<std::int32_t>(place);
}

void CArrayEx::RemoveAll() {
  std::free(buffer_);
  buffer_ = nullptr;
  count_ = used_bytes_ = capacity_ = 0;
  known_sorted_ = sorted_mode_;
}

void CArrayEx::Remove(std::int32_t count, std::int32_t index) {
  std::uint32_t first = 0;
  if (count <= 0 || !Resolve(index, &first)) return;
  const std::uint32_t removed = std::min(static_cast<std::uint32_t>(count), count_ - first);
  const std::uint32_t behind = count_ - first - removed;
  if (behind != 0) MoveRange(first + removed, first, behind);
  Shrink(removed);
}

bool CArrayEx::RemoveValue(const void* value, std::uint32_t size) {
  const std::int32_t index = Find(value, size);
  if (index == kNone) return false;
  Remove(1, index);
  return true;
}

std::int32_t CArrayEx::SetRange(std::int32_t count, std::int32_t index, const void* value, std::uint32_t size) {
  std::uint32_t first = 0;
  if (count <= 0 || (sorted_mode_ && !value) || !Resolve(index, &first)) return kNone;
  const std::uint32_t replaced = std::min(static_cast<std::uint32_t>(count), count_ - first);
  const std::vector<std::byte> element = ElementOf(value, size, element_size_);
  for (std::uint32_t i = 0; i < replaced; ++i) CopyIn(first + i, element.data(), element_size_);
  known_sorted_ = false;
  if (!sorted_mode_) return static_cast<std::int32_t>(first);
  // To overwrite and to sort is the same as to take out and to put in again, and needs no room.
  Sort();
  known_sorted_ = true;
  return Find(element.data(), element_size_);
}

bool CArrayEx::MoveBefore(std::int32_t index, std::int32_t other) {
  std::uint32_t from = 0;
  std::uint32_t to = 0;
  if (sorted_mode_ || !Resolve(index, &from) || !Resolve(other, &to)) return false;
  MoveElement(from, from < to ? to - 1 : to);
  known_sorted_ = false;
  return true;
}

bool CArrayEx::MoveAfter(std::int32_t index, std::int32_t other) {
  std::uint32_t from = 0;
  std::uint32_t to = 0;
  if (sorted_mode_ || !Resolve(index, &from) || !Resolve(other, &to)) return false;
  MoveElement(from, from > to ? to + 1 : to);
  known_sorted_ = false;
  return true;
}

void CArrayEx::Sort() {
  if (known_sorted_ || count_ < 2) return;
  std::uint32_t gap = 1;
  while (gap <= count_ / 9) gap = 3 * gap + 1;
  for (; gap > 0; gap /= 3) {
    if (gap < count_) SortWithGap(gap);
  }
  known_sorted_ = true;
}

void CArrayEx::QuickSort() {
  if (!sort_function_) return Sort();
  if (count_ > 1) std::qsort(buffer_, count_, element_size_, sort_function_);
  known_sorted_ = true;
}

std::int32_t CArrayEx::Find(const void* value, std::uint32_t size) const {
  if (!value) return kNone;
  return Search([&](const void* at) { return comparator_->Compare(at, value, element_size_, size) < 0; },
                [&](const void* at) { return comparator_->Equal(at, value, element_size_, size); });
}

std::int32_t CArrayEx::FindKey(const void* key) const {
  if (!key) return kNone;
  return Search([&](const void* at) { return comparator_->CompareKey(at, key, element_size_) < 0; },
                [&](const void* at) { return comparator_->EqualKey(at, key, element_size_); });
}

std::int32_t CArrayEx::LowerBound(const void* value, std::uint32_t size) const {
  if (!known_sorted_ || count_ == 0 || !value) return kLast;
  return static_cast<std::int32_t>(
      FirstNot([&](const void* at) { return comparator_->Compare(at, value, element_size_, size) < 0; }));
}

std::int32_t CArrayEx::LowerBoundKey(const void* key) const {
  if (!known_sorted_ || count_ == 0 || !key) return kLast;
  return static_cast<std::int32_t>(
      FirstNot([&](const void* at) { return comparator_->CompareKey(at, key, element_size_) < 0; }));
}

void CArrayEx::Reserve(std::uint32_t elements) {
  const std::uint64_t added = std::uint64_t{elements} * element_size_;
  if (used_bytes_ + added <= capacity_) return;
  const std::uint64_t capacity = capacity_ + std::max<std::uint64_t>(added, capacity_);
  if (capacity > std::numeric_limits<std::uint32_t>::max()) Raise(E_OUTOFMEMORY);
  Reallocate(static_cast<std::uint32_t>(capacity));
}

void CArrayEx::CopyIn(std::uint32_t index, const void* value, std::uint32_t size) {
  std::memmove(At(index), value, size);
}

void CArrayEx::CopyOut(std::uint32_t index, void* destination, std::uint32_t size) const {
  std::memmove(destination, At(index), size);
}

void CArrayEx::Reallocate(std::uint32_t bytes) {
  if (bytes == 0) {
    std::free(buffer_);
    buffer_ = nullptr;
  } else {
    void* buffer = std::realloc(buffer_, bytes);
    if (!buffer) Raise(E_OUTOFMEMORY);
    buffer_ = static_cast<std::byte*>(buffer);
  }
  capacity_ = bytes;
}

void CArrayEx::Grow(std::uint32_t elements) {
  if (std::uint64_t{count_} + elements >= kLast) Raise(E_OUTOFMEMORY);
  Reserve(elements);
  count_ += elements;
  used_bytes_ = count_ * element_size_;
}

void CArrayEx::Shrink(std::uint32_t elements) {
  const std::uint32_t removed = elements * element_size_;
  count_ -= elements;
  used_bytes_ -= removed;
  Reallocate(capacity_ - removed);
}

void CArrayEx::MoveRange(std::uint32_t from, std::uint32_t to, std::uint32_t elements) {
  std::memmove(At(to), At(from), RangeBytes(from, from + elements - 1));
}

void CArrayEx::Exchange(std::uint32_t first, std::uint32_t second) {
  std::swap_ranges(At(first), At(first) + element_size_, At(second));
}

void CArrayEx::MoveElement(std::uint32_t from, std::uint32_t to) {
  const std::size_t size = element_size_;
  if (from < to) {
    std::rotate(At(from), At(from) + size, At(to) + size);
  } else {
    std::rotate(At(to), At(from), At(from) + size);
  }
}

std::uint32_t CArrayEx::ElementSizeAt(std::uint32_t /*index*/) const {
  return element_size_;
}

std::uint32_t CArrayEx::RangeBytes(std::uint32_t first, std::uint32_t last) const {
  return (last - first + 1) * element_size_;
}

/// False for an index out of range.
bool CArrayEx::Resolve(std::int32_t index, std::uint32_t* element) const {
  if (count_ == 0 || index < 0) return false;
  *element = index == kLast ? count_ - 1 : static_cast<std::uint32_t>(index);
  return *element < count_;
}

/// True when an element stands in order with its neighbours.
bool CArrayEx::IsInOrderAt(std::uint32_t index) const {
  auto in_order = [&](std::uint32_t first) {
    return comparator_->Compare(At(first), At(first + 1), element_size_, element_size_) <= 0;
  };
  return (index == 0 || in_order(index - 1)) && (index + 1 == count_ || in_order(index));
}

/// Bisection for the first element that does not stand before what is searched.
template <class IsBefore>
std::uint32_t CArrayEx::FirstNot(IsBefore is_before) const {
  std::uint32_t low = 0;
  std::uint32_t high = count_;
  while (low < high) {
    const std::uint32_t middle = low + (high - low) / 2;
    if (is_before(At(middle))) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

/// By bisection where the order is known, else one element after the other.
template <class IsBefore, class Equals>
std::int32_t CArrayEx::Search(IsBefore is_before, Equals equals) const {
  std::uint32_t index = known_sorted_ ? FirstNot(is_before) : 0;
  if (!known_sorted_) {
    while (index < count_ && !equals(At(index))) ++index;
  }
  return index < count_ && equals(At(index)) ? static_cast<std::int32_t>(index) : kNone;
}

/// Sinks every element into its place among those that stand `gap` apart.
void CArrayEx::SortWithGap(std::uint32_t gap) {
  for (std::uint32_t i = gap; i < count_; ++i) {
    for (std::uint32_t at = i; at >= gap; at -= gap) {
      if (comparator_->Compare(At(at - gap), At(at), element_size_, element_size_) <= 0) break;
      Exchange(at - gap, at);
    }
  }
}

}  // namespace orvo

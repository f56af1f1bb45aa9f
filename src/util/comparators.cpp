#include "util/comparators.h"

namespace orvo {

int CComparator::Compare(const void* a, const void* b, std::uint32_t size_a, std::uint32_t size_b) const {
  const int order = std::memcmp(a, b, std::min(size_a, size_b));
  return order < 0 ? -1 : static_cast<int>(order > 0);
}

bool CComparator::Equal(const void* a, const void* b, std::uint32_t size_a, std::uint32_t size_b) const {
  return Compare(a, b, size_a, size_b) == 0;
}

int CComparator::CompareKey(const void* element, const void* key, std::uint32_t element_size) const {
  return Compare(element, key, element_size, element_size);
}

bool CComparator::EqualKey(const void* element, const void* key, std::uint32_t element_size) const {
  return CompareKey(element, key, element_size) == 0;
}

}  // namespace orvo

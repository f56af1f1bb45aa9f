#include "util/printable_bytes.h"

#include <algorithm>

namespace orvo {

bool PrintableBytes(std::span<const std::uint8_t> bytes, std::size_t capacity, std::u16string* out) {
  out->clear();
  if (capacity < 3 || bytes.size() > (capacity - 3) / 2) return false;
  // A byte counts as a signed number here, so that 0x80 and above are as unprintable as control characters. The rubout
  // (0x7F) is let through.
  auto printable = [](std::uint8_t byte) { return static_cast<std::int8_t>(byte) >= 32; };
  if (std::all_of(bytes.begin(), bytes.end(), printable)) {
    out->assign(bytes.begin(), bytes.end());
    return true;
  }
  *out = u"0x";
  for (std::uint8_t byte : bytes) {
    *out += u"0123456789ABCDEF"[byte >> 4];
    *out += u"0123456789ABCDEF"[byte & 15];
  }
  return true;
}

}  // namespace orvo

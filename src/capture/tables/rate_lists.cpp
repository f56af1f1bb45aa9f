#include "capture/tables/rate_lists.h"

namespace orvo {

bool RateLists::Count(std::uint32_t* first, std::uint32_t rate, std::uint64_t bytes) {
  std::uint32_t last = kNoRow;
  std::size_t length = 0;
  for (std::uint32_t row = *first; row != kNoRow; row = rows_[row].next) {
    if (rows_[row].rate.rate == rate) {
      WirelessRate& counted = rows_.Edit(row).rate;
      ++counted.packets;
      counted.bytes += bytes;
      return true;
    }
    last = row;
    ++length;
  }
  if (length >= limit_) return false;
  const auto added = static_cast<std::uint32_t>(rows_.size());
  rows_.Append({{rate, 1, bytes}, kNoRow});
  (last == kNoRow ? *first : rows_.Edit(last).next) = added;
  return true;
}

}  // namespace orvo

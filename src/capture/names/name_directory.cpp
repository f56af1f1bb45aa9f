#include "capture/names/name_directory.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "platform/utf.h"

namespace orvo {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

constexpr Range kInvisible[] = {
    {0x0000, 0x001F}, {0x007F, 0x00A0},   {0x00AD, 0x00AD},   {0x034F, 0x034F},   {0x061C, 0x061C}, {0x115F, 0x1160},
    {0x1680, 0x1680}, {0x17B4, 0x17B5},   {0x180B, 0x180F},   {0x2000, 0x200F},   {0x2028, 0x202F}, {0x205F, 0x206F},
    {0x2800, 0x2800}, {0x3000, 0x3000},   {0x3164, 0x3164},   {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF}, {0xFFA0, 0xFFA0},
    {0xFFF0, 0xFFFB}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF},
};

/// A name fit for the directory: whole characters, of which all can be seen.
std::u16string Clean(std::u16string_view name) {
  std::u16string clean;
  for (std::size_t at = 0; at < name.size();) {
    const CodePoint next = NextCodePoint(name, at);
    at += next.length;
    if (clean.size() + next.length > NameDirectory::kMaxLength) break;
    if (!next.valid || IsInvisible(next.value)) {
      clean.push_back(u'?');
    } else {
      AppendCodePoint(next.value, &clean);
    }
  }
  return clean;
}

}  // namespace

bool IsInvisible(char32_t character) {
  return std::any_of(std::begin(kInvisible), std::end(kInvisible),
                     [&](Range range) { return character >= range.first && character <= range.last; });
}

bool NameDirectory::Learn(const AddressRecord& address, std::u16string_view name, NameSource source) {
  std::u16string clean = Clean(name);
  if (clean.empty()) return false;
  std::lock_guard lock(mutex_);
  if (auto found = names_.find(address); found != names_.end()) {
    if (found->second.source > source) return false;
    found->second = {std::move(clean), source};
    return true;
  }
  if (names_.size() >= limit_) {
    refused_.fetch_add(1, std::memory_order_relaxed);
    return false;
  }
  names_.emplace(address, Entry{std::move(clean), source});
  any_.store(true, std::memory_order_release);
  return true;
}

bool NameDirectory::Append(const AddressRecord& address, std::u16string* text) const {
  if (address.type == kAddressProtocol || !any_.load(std::memory_order_acquire)) return false;
  std::shared_lock lock(mutex_);
  auto found = names_.find(address);
  if (found == names_.end()) return false;
  text->append(found->second.name);
  return true;
}

}  // namespace orvo

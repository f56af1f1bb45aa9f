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
  if (character >= U' ' && character <= U'~') return false;  // nearly all of them
  return std::any_of(std::begin(kInvisible), std::end(kInvisible),
                     [&](Range range) { return character >= range.first && character <= range.last; });
}

bool NameDirectory::Learn(const AddressRecord& address, std::u16string_view name, NameSource source) {
  std::u16string clean = Clean(name);
  if (clean.empty()) return false;
  const std::uint64_t hash = hash_(address);
  std::lock_guard lock(mutex_);
  if (const std::uint32_t row = Find(address, hash); row != kNoRow) {
    Entry& entry = entries_[row];
    if (entry.source > source) return false;
    entry.source = source;
    entry.name = std::move(clean);
    return true;
  }
  if (entries_.size() >= limit_) {
    refused_.fetch_add(1, std::memory_order_relaxed);
    return false;
  }
  index_.Reserve();
  entries_.push_back({address, source, std::move(clean)});
  index_.Add(hash, static_cast<std::uint32_t>(entries_.size() - 1));
  any_.store(true, std::memory_order_release);
  return true;
}

bool NameDirectory::Append(const AddressRecord& address, std::u16string* text) const {
  if (address.type == kAddressProtocol || !any_.load(std::memory_order_acquire)) return false;
  const std::uint64_t hash = hash_(address);
  std::shared_lock lock(mutex_);
  const std::uint32_t row = Find(address, hash);
  if (row == kNoRow) return false;
  text->append(entries_[row].name);
  return true;
}

}  // namespace orvo

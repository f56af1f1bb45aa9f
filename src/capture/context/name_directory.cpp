#include "capture/context/name_directory.h"

#include <algorithm>
#include <mutex>

namespace orvo {
namespace {

/// Control characters of both sets, and the two that end lines or paragraphs.
constexpr bool IsControl(char16_t unit) {
  return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029;
}

}  // namespace

bool NameDirectory::Learn(const AddressRecord& address, std::u16string_view name) {
  std::u16string clean(name.substr(0, kMaxLength));
  if (clean.empty()) return false;
  std::replace_if(clean.begin(), clean.end(), IsControl, u'?');
  std::lock_guard lock(mutex_);
  if (auto found = names_.find(address); found != names_.end()) {
    found->second = std::move(clean);
    return true;
  }
  if (names_.size() >= kMaxNames) return false;
  names_.emplace(address, std::move(clean));
  any_.store(true, std::memory_order_release);
  return true;
}

bool NameDirectory::Append(const AddressRecord& address, std::u16string* text) const {
  if (!any_.load(std::memory_order_acquire)) return false;
  std::shared_lock lock(mutex_);
  auto found = names_.find(address);
  if (found == names_.end()) return false;
  text->append(found->second);
  return true;
}

}  // namespace orvo

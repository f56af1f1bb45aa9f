#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// A counted UTF-16 text that crosses interfaces: null stands for an empty text. It is made by AllocString, ends with
/// a zero that its length does not count, and belongs to whoever received it as an out value (FreeString).
using BSTR = char16_t*;

/// A new copy; null when there is no memory for it.
ORVO_PLATFORM_API BSTR AllocString(std::u16string_view text) noexcept;
ORVO_PLATFORM_API void FreeString(BSTR string) noexcept;
/// Length in UTF-16 units; 0 for null.
ORVO_PLATFORM_API std::size_t StringLength(const char16_t* string) noexcept;

inline std::u16string_view StringView(const char16_t* string) {
  return {string ? string : u"", StringLength(string)};
}

/// Provokes allocation failures in tests: the next `successes` strings of this thread are made, the one after fails
/// once. A negative value (the default) fails none.
ORVO_PLATFORM_API void FailStringAllocation(int successes) noexcept;

/// Owns a BSTR.
class Bstr {
 public:
  Bstr() = default;
  /// Raises E_OUTOFMEMORY when the copy cannot be made.
  ORVO_PLATFORM_API explicit Bstr(std::u16string_view text);
  Bstr(Bstr&& other) noexcept : string_(std::exchange(other.string_, nullptr)) {}
  Bstr& operator=(Bstr&& other) noexcept {
    std::swap(string_, other.string_);
    return *this;
  }
  ~Bstr() { FreeString(string_); }

  BSTR get() const { return string_; }
  std::u16string_view view() const { return StringView(string_); }
  BSTR Detach() { return std::exchange(string_, nullptr); }
  BSTR* Out() {
    FreeString(std::exchange(string_, nullptr));
    return &string_;
  }

 private:
  BSTR string_ = nullptr;
};

}  // namespace orvo

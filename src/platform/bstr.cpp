#include "platform/bstr.h"

#include <cstdlib>
#include <cstring>
#include <limits>

#include "platform/error.h"

namespace orvo {
namespace {

// The length stands before the characters, in the same piece of memory.
constexpr std::size_t kHeader = sizeof(std::size_t);
constexpr std::size_t kLongest = (std::numeric_limits<std::size_t>::max() - kHeader) / sizeof(char16_t) - 1;

thread_local int successes_left = -1;

bool MustFail() {
  if (successes_left < 0) return false;
  return successes_left-- == 0;
}

}  // namespace

BSTR AllocString(std::u16string_view text) noexcept {
  if (MustFail() || text.size() > kLongest) return nullptr;
  std::size_t length = text.size();
  char* memory = static_cast<char*>(std::malloc(kHeader + (length + 1) * sizeof(char16_t)));
  if (!memory) return nullptr;
  std::memcpy(memory, &length, kHeader);
  BSTR string = reinterpret_cast<BSTR>(memory + kHeader);
  if (length > 0) std::memcpy(string, text.data(), length * sizeof(char16_t));
  string[length] = 0;
  return string;
}

void FreeString(BSTR string) noexcept {
  if (string) std::free(reinterpret_cast<char*>(string) - kHeader);
}

std::size_t StringLength(const char16_t* string) noexcept {
  if (!string) return 0;
  std::size_t length = 0;
  std::memcpy(&length, reinterpret_cast<const char*>(string) - kHeader, kHeader);
  return length;
}

void FailStringAllocation(int successes) noexcept {
  successes_left = successes;
}

Bstr::Bstr(std::u16string_view text) : string_(AllocString(text)) {
  if (!string_) Raise(E_OUTOFMEMORY);
}

}  // namespace orvo

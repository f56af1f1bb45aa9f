#include "text/text_buffer.h"

#include <algorithm>
#include <cmath>

#include "platform/code_page.h"
#include "platform/error.h"
#include "platform/fixed_text.h"

namespace orvo {

TextBuffer::TextBuffer(std::size_t capacity) : bytes_(new char[capacity]), capacity_(capacity) {}

void TextBuffer::Grow(std::size_t bytes) {
  std::size_t capacity = std::max(capacity_ * 2, size_ + bytes);
  std::unique_ptr<char[]> larger(new char[capacity]);
  std::memcpy(larger.get(), bytes_.get(), size_);
  bytes_ = std::move(larger);
  capacity_ = capacity;
}

void TextBuffer::AppendReal(double value) {
  if (!std::isfinite(value)) return Append('-');
  constexpr std::size_t kLongestReal = 320;  // the largest double has 309 digits before the full stop
  char* begin = Room(kLongestReal);
  size_ = static_cast<std::size_t>(WriteFixed(value, 3, begin, begin + kLongestReal) - bytes_.get());
}

void TextBuffer::AppendWide(std::u16string_view text) {
  char* out = Room(text.size());
  std::size_t ascii = 0;
  while (ascii < text.size() && text[ascii] < 0x80) {
    out[ascii] = static_cast<char>(text[ascii]);
    ++ascii;
  }
  size_ += ascii;
  if (ascii == text.size()) return;
  narrow_.clear();
  Check(AppendNarrow(text.substr(ascii), &narrow_));
  Append(narrow_);
}

}  // namespace orvo

#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace orvo {

/// Bytes of a text file on their way out: what rows are formatted into. Grows for a row that does not fit.
class TextBuffer {
 public:
  explicit TextBuffer(std::size_t capacity);

  std::string_view view() const { return {bytes_.get(), size_}; }
  std::size_t size() const { return size_; }
  /// Drops everything from an earlier size on.
  void Truncate(std::size_t size) { size_ = size; }

  void Append(std::string_view text) {
    std::memcpy(Room(text.size()), text.data(), text.size());
    size_ += text.size();
  }

  void Append(char byte) {
    *Room(1) = byte;
    ++size_;
  }

  template <class Integer>
  void AppendInteger(Integer value) {
    char* begin = Room(kNumberLength);
    size_ = static_cast<std::size_t>(std::to_chars(begin, begin + kNumberLength, value).ptr - bytes_.get());
  }

  /// Three decimals behind a full stop; "-" for a value that is not finite.
  void AppendReal(double value);

  /// The text in the code page of text files; raises the converter's failure.
  void AppendWide(std::u16string_view text);

 private:
  static constexpr std::size_t kNumberLength = 24;

  char* Room(std::size_t bytes) {
    if (capacity_ - size_ < bytes) Grow(bytes);
    return bytes_.get() + size_;
  }
  void Grow(std::size_t bytes);

  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  std::string narrow_;  // scratch of AppendWide
};

}  // namespace orvo

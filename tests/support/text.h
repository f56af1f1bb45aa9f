#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orvo::test {

/// Plain ASCII to UTF-16 and back, for names and paths of tests.
inline std::u16string Wide(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

inline std::string Ascii(std::u16string_view wide) {
  std::string text;
  for (char16_t unit : wide) text.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
  return text;
}

inline void AppendDecimal(std::uint64_t value, std::u16string* text) {
  char16_t digits[20];
  std::size_t at = 20;
  do {
    digits[--at] = static_cast<char16_t>(u'0' + value % 10);
    value /= 10;
  } while (value != 0);
  text->append(digits + at, 20 - at);
}

}  // namespace orvo::test

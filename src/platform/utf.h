#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace orvo {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// One code point read from a text and the number of units it takes. What is no code point (an unpaired surrogate, a
/// malformed byte sequence) reads as U+FFFD and is not valid; it is then as long as the Unicode Standard's "maximal
/// subpart", so that reading goes on behind it.
struct CodePoint {
  char32_t value = kReplacementCharacter;
  std::uint32_t length = 1;
  bool valid = false;
};

constexpr bool IsHighSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// The code point at `at`, which must lie in the text.
constexpr CodePoint NextCodePoint(std::u16string_view text, std::size_t at) {
  char16_t unit = text[at];
  if (!IsHighSurrogate(unit) && !IsLowSurrogate(unit)) return {unit, 1, true};
  if (IsLowSurrogate(unit) || at + 1 >= text.size() || !IsLowSurrogate(text[at + 1])) return {};
  char32_t value = 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (char32_t{text[at + 1]} - 0xDC00);
  return {value, 2, true};
}

/// The code point at `at`, which must lie in the text. The bounds of the second byte are those of table 3-7 of the
/// Unicode Standard: they exclude overlong forms, surrogates and values above U+10FFFF.
constexpr CodePoint NextCodePoint(std::string_view utf8, std::size_t at) {
  auto byte = [&](std::size_t index) { return static_cast<std::uint8_t>(utf8[index]); };
  std::uint8_t lead = byte(at);
  if (lead < 0x80) return {lead, 1, true};
  if (lead < 0xC2 || lead > 0xF4) return {};
  std::uint32_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  std::uint8_t low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  std::uint8_t high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  char32_t value = lead & (0x7FU >> length);
  for (std::uint32_t i = 1; i < length; ++i) {
    if (at + i >= utf8.size() || byte(at + i) < low || byte(at + i) > high) return {kReplacementCharacter, i, false};
    value = (value << 6) | (byte(at + i) & 0x3FU);
    low = 0x80;
    high = 0xBF;
  }
  return {value, length, true};
}

inline void AppendCodePoint(char32_t value, std::string* utf8) {
  auto add = [&](char32_t bits) { utf8->push_back(static_cast<char>(bits)); };
  if (value < 0x80) return add(value);
  if (value < 0x800) {
    add(0xC0 | (value >> 6));
  } else {
    if (value < 0x10000) {
      add(0xE0 | (value >> 12));
    } else {
      add(0xF0 | (value >> 18));
      add(0x80 | ((value >> 12) & 0x3F));
    }
    add(0x80 | ((value >> 6) & 0x3F));
  }
  add(0x80 | (value & 0x3F));
}

inline void AppendCodePoint(char32_t value, std::u16string* text) {
  if (value < 0x10000) return text->push_back(static_cast<char16_t>(value));
  text->push_back(static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10)));
  text->push_back(static_cast<char16_t>(0xDC00 + ((value - 0x10000) & 0x3FF)));
}

/// Length of the run of ASCII characters at the start of a text, looked at eight units at a time.
inline std::size_t AsciiRun(std::u16string_view text) {
  std::size_t at = 0;
  for (; at + 8 <= text.size(); at += 8) {
    std::uint64_t units[2];
    std::memcpy(units, text.data() + at, sizeof units);
    if ((units[0] | units[1]) & 0xFF80'FF80'FF80'FF80ULL) break;
  }
  while (at < text.size() && text[at] < 0x80) ++at;
  return at;
}

/// Appends a run of ASCII characters as bytes.
inline void AppendAscii(std::u16string_view ascii, std::string* out) {
  std::size_t start = out->size();
  out->resize(start + ascii.size());
  char* target = out->data() + start;
  for (std::size_t i = 0; i < ascii.size(); ++i) target[i] = static_cast<char>(ascii[i]);
}

/// Walks a text as runs of ASCII, handed to `ascii` as they are, and single code points, handed to `other`.
template <class Ascii, class Other>
void ForEachRun(std::u16string_view text, Ascii&& ascii, Other&& other) {
  while (!text.empty()) {
    if (std::size_t run = AsciiRun(text)) {
      ascii(text.substr(0, run));
      text.remove_prefix(run);
    }
    while (!text.empty() && text[0] >= 0x80) {
      CodePoint code_point = NextCodePoint(text, 0);
      other(code_point);
      text.remove_prefix(code_point.length);
    }
  }
}

}  // namespace orvo

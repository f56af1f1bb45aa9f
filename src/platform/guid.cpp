#include "platform/guid.h"

namespace orvo {
namespace {

constexpr std::size_t kTextLength = 38;

constexpr bool IsHyphen(std::size_t position) {
  return position == 9 || position == 14 || position == 19 || position == 24;
}

int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

}  // namespace

Status ParseGuid(std::u16string_view text, Guid* guid) {
  if (!guid) return E_POINTER;
  if (text.size() != kTextLength || text.front() != u'{' || text.back() != u'}') return CO_E_CLASSSTRING;
  std::array<std::uint8_t, 16> bytes{};
  std::size_t digits = 0;
  for (std::size_t i = 1; i + 1 < kTextLength; ++i) {
    if (IsHyphen(i)) {
      if (text[i] != u'-') return CO_E_CLASSSTRING;
      continue;
    }
    int digit = HexDigit(text[i]);
    if (digit < 0) return CO_E_CLASSSTRING;
    bytes[digits / 2] = static_cast<std::uint8_t>(bytes[digits / 2] * 16 + digit);
    ++digits;
  }
  auto number = [&](std::size_t from, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = from; i < from + count; ++i) value = (value << 8) | bytes[i];
    return value;
  };
  guid->data1 = number(0, 4);
  guid->data2 = static_cast<std::uint16_t>(number(4, 2));
  guid->data3 = static_cast<std::uint16_t>(number(6, 2));
  for (std::size_t i = 0; i < guid->data4.size(); ++i) guid->data4[i] = bytes[8 + i];
  return S_OK;
}

std::u16string FormatGuid(const Guid& guid) {
  std::u16string text = u"{";
  auto add = [&](std::uint32_t value, int digits) {
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4) text += u"0123456789ABCDEF"[(value >> shift) & 15U];
  };
  add(guid.data1, 8);
  text += u'-';
  add(guid.data2, 4);
  text += u'-';
  add(guid.data3, 4);
  text += u'-';
  for (std::size_t i = 0; i < guid.data4.size(); ++i) {
    if (i == 2) text += u'-';
    add(guid.data4[i], 2);
  }
  return text += u'}';
}

}  // namespace orvo

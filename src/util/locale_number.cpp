#include "util/locale_number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "platform/locale.h"
#include "util/ascii.h"
#include "util/formatting.h"

namespace orvo {
namespace {

constexpr std::size_t kSeparatorLimit = 16;
constexpr int kMostDecimals = 9;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// The number that an item's first character gives, `fallback` for an item without one.
int FirstDigit(LocaleItem item, int fallback) {
  std::u16string text = LocaleInfo(item);
  return !text.empty() && text[0] >= u'0' && text[0] <= u'9' ? text[0] - u'0' : fallback;
}

// At least two characters wide, with a full stop in every locale.
std::string PrintFixed(double value, int decimals) {
  constexpr int kLongestWhole = 310;
  std::array<char, kLongestWhole + 2 + kFormattedTextLimit> buffer;
  auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed,
                                    std::clamp(decimals, 0, static_cast<int>(kFormattedTextLimit)));
  std::string text(buffer.data(), end);
  if (text.size() < 2) text.insert(0, 1, ' ');
  if (text.size() > kFormattedTextLimit) text.resize(kFormattedTextLimit);
  return text;
}

std::u16string Group(std::string_view digits, const NumberFormat& format) {
  std::u16string text;
  auto group = static_cast<std::size_t>(format.grouping);
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (group != 0 && i != 0 && (digits.size() - i) % group == 0) text += format.thousand;
    text += static_cast<char16_t>(digits[i]);
  }
  return text;
}

std::u16string MarkNegative(const std::u16string& magnitude, const NumberFormat& format) {
  switch (format.negative_order) {
    case 0: return u"(" + magnitude + u")";
    case 2: return format.negative_sign + u" " + magnitude;
    case 3: return magnitude + format.negative_sign;
    case 4: return magnitude + u" " + format.negative_sign;
    default: return format.negative_sign + magnitude;
  }
}

}  // namespace

NumberFormat ReadNumberFormat() {
  NumberFormat format;
  format.decimal = LocaleInfo(LocaleItem::kDecimal).substr(0, kSeparatorLimit);
  format.thousand = LocaleInfo(LocaleItem::kThousand).substr(0, kSeparatorLimit);
  format.negative_sign = LocaleInfo(LocaleItem::kNegativeSign);
  format.leading_zero = FirstDigit(LocaleItem::kLeadingZero, 1) != 0;
  format.grouping = FirstDigit(LocaleItem::kGrouping, 3);
  format.negative_order = FirstDigit(LocaleItem::kNegativeNumber, 1);
  return format;
}

bool PunctuateNumber(std::string_view number, const NumberFormat& format, std::u16string* out) {
  bool negative = number.starts_with('-');
  if (negative) number.remove_prefix(1);
  std::size_t stop = number.find('.');
  std::string_view whole = number.substr(0, stop);
  std::string_view fraction = stop == std::string_view::npos ? std::string_view() : number.substr(stop + 1);
  if (whole.empty() || !std::ranges::all_of(whole, IsDigit) || !std::ranges::all_of(fraction, IsDigit)) return false;
  if (format.decimals > kMostDecimals || std::cmp_not_equal(fraction.size(), format.decimals)) return false;

  std::u16string text;
  if (whole != "0" || format.leading_zero || fraction.empty()) text = Group(whole, format);
  if (!fraction.empty()) text += format.decimal + WidenAscii(fraction);
  *out = negative ? MarkNegative(text, format) : text;
  CutFormattedText(out);
  return true;
}

Status FormatNumber(double value, int decimals, std::u16string* out) {
  if (!out) return E_POINTER;
  static const NumberFormat user_format = ReadNumberFormat();
  NumberFormat format = user_format;
  format.decimals = std::max(decimals, 0);
  std::string printed = PrintFixed(value, decimals);
  if (!PunctuateNumber(printed, format, out)) *out = WidenAscii(printed);
  return S_OK;
}

}  // namespace orvo

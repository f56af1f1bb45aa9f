#include "util/formatting.h"

#include "platform/locale.h"

namespace orvo {

std::u16string FractionText(std::uint64_t nanoseconds, int precision) {
  if (precision < kMilliseconds || precision > kNanoseconds) return {};
  int digits = 3 * (precision + 1);
  for (int i = digits; i < 9; ++i) nanoseconds /= 10;
  std::u16string text = LocaleInfo(LocaleItem::kDecimal);
  std::size_t begin = text.size();
  text.append(static_cast<std::size_t>(digits), u'0');
  for (std::size_t at = text.size(); at-- > begin; nanoseconds /= 10) {
    text[at] = static_cast<char16_t>(u'0' + nanoseconds % 10);
  }
  return text;
}

}  // namespace orvo

#include "xml/xml_columns.h"

#include <charconv>

#include "platform/error.h"
#include "util/ascii.h"
#include "util/duration.h"
#include "util/formatting.h"
#include "util/locale_number.h"
#include "util/printable_bytes.h"
#include "util/string_table.h"

namespace orvo {
namespace {

constexpr int kDecimals = 3;

std::u16string RealText(double value, RealForm form) {
  std::u16string text;
  if (form == RealForm::kThreeDecimals) {
    Check(FormatNumber(value, kDecimals, &text));
    return text;
  }
  char digits[64];  // a quotient of two 64-bit counts has at most 20 digits before its point
  const auto end = std::to_chars(std::begin(digits), std::end(digits), value, std::chars_format::fixed, 6);
  return WidenAscii({digits, end.ptr});
}

}  // namespace

std::u16string RatioText(std::uint64_t part, std::uint64_t whole) {
  return RealText(Ratio(part, whole).as_real(), RealForm::kRatio);
}

std::u16string ValueText(XmlReport& report, const Value& value, RealForm form) {
  std::u16string text;
  switch (value.kind()) {
    case Value::Kind::kNothing: break;
    case Value::Kind::kUnsigned: return NumberText(value.as_unsigned());
    case Value::Kind::kSigned: return WidenAscii(std::to_string(value.as_signed()));
    case Value::Kind::kReal: return RealText(value.as_real(), form);
    case Value::Kind::kTime:
      if (value.as_unsigned() != 0) report.util.FormatTimestamp(value.as_unsigned(), &text);
      break;
    case Value::Kind::kDuration:
      Check(FormatDuration(value.as_signed(), kMicroseconds, TextOf(kStrDaysAndTime), &text));
      break;
    case Value::Kind::kText: return WidenAscii(value.as_text());
    case Value::Kind::kName: PrintableBytes(value.as_name(), kPrintableBytesCapacity, &text); break;
  }
  return text;
}

}  // namespace orvo

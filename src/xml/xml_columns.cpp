#include "xml/xml_columns.h"

#include <charconv>
#include <cmath>

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

/// A quotient of two 64-bit counts, which has at most 20 digits before its point.
class RatioDigits {
 public:
  explicit RatioDigits(double value)
      : end_(std::to_chars(std::begin(digits_), std::end(digits_), value, std::chars_format::fixed, 6).ptr) {}
  std::string_view text() const { return {digits_, end_}; }

 private:
  char digits_[64];
  const char* end_;
};

std::u16string RealText(double value, RealForm form) {
  if (form == RealForm::kRatio) return WidenAscii(RatioDigits(value).text());
  if (!std::isfinite(value)) return {};
  std::u16string text;
  Check(FormatNumber(value, kDecimals, &text));
  return text;
}

}  // namespace

void AddRatio(std::string_view name, std::uint64_t part, std::uint64_t whole, XmlWriter row) {
  row.AddPlain(name, RatioDigits(Ratio(part, whole).as_real()).text());
}

void AddValue(XmlReport& report, std::string_view name, const Value& value, RealForm form, XmlWriter row) {
  if (value.kind() == Value::Kind::kUnsigned) return AddNumber(row, name, value.as_unsigned());
  if (value.kind() == Value::Kind::kReal && form == RealForm::kRatio) {
    return row.AddPlain(name, RatioDigits(value.as_real()).text());
  }
  row.AddElement(name, ValueText(report, value, form));
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

#include "pdf/section_table.h"

#include <charconv>
#include <iterator>

#include "util/duration.h"
#include "util/formatting.h"
#include "util/locale_number.h"
#include "util/printable_bytes.h"
#include "util/string_table.h"

namespace orvo {
namespace {

constexpr int kDecimals = 3;

template <class Integer>
void WordInteger(Integer value, std::u16string* text) {
  char digits[24];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), value);
  text->assign(std::begin(digits), end.ptr);
}

}  // namespace

void WordValue(PdfReport& report, const Value& value, std::u16string* text) {
  text->clear();
  switch (value.kind()) {
    case Value::Kind::kNothing: break;
    case Value::Kind::kUnsigned: WordInteger(value.as_unsigned(), text); break;
    case Value::Kind::kSigned: WordInteger(value.as_signed(), text); break;
    case Value::Kind::kReal: Check(FormatNumber(value.as_real(), kDecimals, text)); break;
    case Value::Kind::kTime:
      if (value.as_unsigned() != 0) report.util.FormatTimestamp(value.as_unsigned(), text);
      break;
    case Value::Kind::kDuration:
      Check(FormatDuration(value.as_signed(), kNoFraction, TextOf(kStrDaysAndTime), text));
      break;
    case Value::Kind::kText: text->assign(value.as_text().begin(), value.as_text().end()); break;
    case Value::Kind::kName: PrintableBytes(value.as_name(), kPrintableBytesCapacity, text); break;
  }
}

void WordPercentage(std::uint64_t part, std::uint64_t whole, std::u16string* text) {
  if (whole == 0) {
    *text = u"N/A";
    return;
  }
  const auto percentage = static_cast<float>(static_cast<double>(part) * 100 / static_cast<double>(whole));
  Check(FormatNumber(percentage, kDecimals, text));
}

}  // namespace orvo

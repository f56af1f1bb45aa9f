#include "text/text_report.h"

#include "platform/error.h"
#include "util/duration.h"
#include "util/formatting.h"
#include "util/printable_bytes.h"

namespace orvo {

std::u16string FilePath(const TextReport& report, StringId title) {
  return report.job.folder + std::u16string(TextOf(title)) + std::u16string(report.extension);
}

std::u16string FilePath(const TextReport& report, StringId title, StringId second_title) {
  return report.job.folder + std::u16string(TextOf(title)) + u"-" + std::u16string(TextOf(second_title)) +
         std::u16string(report.extension);
}

void AppendAddress(TextReport& report, const AddressRecord* record, TextBuffer* out) {
  if (!record) return;
  const std::string_view kept = report.address_texts.Find(*record);
  if (!kept.empty()) return out->Append(kept);
  report.util.FormatAddress(*record, true, &report.scratch);
  const std::size_t before = out->size();
  out->AppendWide(report.scratch);
  report.address_texts.Keep(*record, out->view().substr(before));
}

void AppendValue(TextReport& report, const Value& value, TextBuffer* out) {
  switch (value.kind()) {
    case Value::Kind::kNothing: break;
    case Value::Kind::kUnsigned: out->AppendInteger(value.as_unsigned()); break;
    case Value::Kind::kSigned: out->AppendInteger(value.as_signed()); break;
    case Value::Kind::kReal: out->AppendReal(value.as_real()); break;
    case Value::Kind::kTime:
      if (value.as_unsigned() == 0) break;
      report.util.FormatTimestamp(value.as_unsigned(), &report.scratch);
      out->AppendWide(report.scratch);
      break;
    case Value::Kind::kDuration:
      Check(FormatDuration(value.as_signed(), kMicroseconds, TextOf(kStrDaysAndTime), &report.scratch));
      out->AppendWide(report.scratch);
      break;
    case Value::Kind::kText: out->Append(value.as_text()); break;
    case Value::Kind::kName:
      PrintableBytes(value.as_name(), kPrintableBytesCapacity, &report.scratch);
      out->AppendWide(report.scratch);
      break;
  }
}

}  // namespace orvo

#include "util/date_time.h"

#include "platform/clock.h"
#include "platform/locale.h"
#include "util/formatting.h"

namespace orvo {
namespace {

// Puts an empty text into `out` and fills it; empty again when `fill` fails.
template <class Fill>
Status FillText(std::u16string* out, Fill&& fill) {
  if (!out) return E_POINTER;
  out->clear();
  Status status = fill();
  if (Failed(status)) {
    out->clear();
  } else {
    CutFormattedText(out);
  }
  return status;
}

}  // namespace

Status FormatDate(std::uint64_t time, std::u16string* out) {
  return FillText(out, [&] {
    CalendarTime local;
    Status status = ToLocalTime(time, &local);
    return Failed(status) ? status : FormatShortDate(local, out);
  });
}

Status FormatTimeOfDay(std::uint64_t time, int precision, std::u16string* out) {
  return FillText(out, [&] {
    CalendarTime local;
    Status status = ToLocalTime(time, &local);
    if (Succeeded(status)) status = FormatTime24(local.hour, local.minute, local.second, out);
    if (Succeeded(status)) *out += FractionText(time % kNanosecondsPerSecond, precision);
    return status;
  });
}

Status FormatTimestamp(std::uint64_t time, std::u16string* out) {
  std::u16string time_text;
  Status status = FormatDate(time, out);
  if (Succeeded(status)) status = FormatTimeOfDay(time, kNoFraction, &time_text);
  if (Succeeded(status)) {
    *out += u' ';
    *out += time_text;
  } else if (out) {
    out->clear();
  }
  return status;
}

}  // namespace orvo

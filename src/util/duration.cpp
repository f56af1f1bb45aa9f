#include "util/duration.h"

#include "platform/clock.h"
#include "platform/locale.h"
#include "util/ascii.h"
#include "util/formatting.h"

namespace orvo {
namespace {

// Appends the pattern with its first two "%s" replaced.
void AppendPattern(std::u16string_view pattern, std::u16string_view first, std::u16string_view second,
                   std::u16string* text) {
  for (std::u16string_view value : {first, second}) {
    std::size_t slot = pattern.find(u"%s");
    if (slot == std::u16string_view::npos) break;
    *text += pattern.substr(0, slot);
    *text += value;
    pattern.remove_prefix(slot + 2);
  }
  *text += pattern;
}

Status AppendMagnitude(std::uint64_t magnitude, int precision, std::u16string_view day_pattern, std::u16string* text) {
  std::uint64_t whole_seconds = magnitude / kNanosecondsPerSecond;
  std::uint64_t days = whole_seconds / 86400;
  int hours = static_cast<int>(whole_seconds % 86400 / 3600);
  int minutes = static_cast<int>(whole_seconds % 3600 / 60);
  int seconds = static_cast<int>(whole_seconds % 60);
  std::u16string fraction = FractionText(magnitude % kNanosecondsPerSecond, precision);

  if (precision != kNoFraction && days == 0 && hours == 0 && minutes == 0) {
    *text += WidenAscii(std::to_string(seconds));
    *text += fraction;
    return S_OK;
  }
  std::u16string time;
  Status status = FormatTime24(hours, minutes, seconds, &time);
  if (Failed(status)) return status;
  time += fraction;
  if (days == 0) {
    *text += time;
  } else {
    AppendPattern(day_pattern, WidenAscii(std::to_string(days)), time, text);
  }
  return S_OK;
}

}  // namespace

Status FormatDuration(std::int64_t duration, int precision, std::u16string_view day_pattern, std::u16string* out) {
  if (!out) return E_POINTER;
  out->clear();
  if (precision > kNoFraction) return S_OK;

  auto magnitude = static_cast<std::uint64_t>(duration);
  if (duration < 0) {
    *out = LocaleInfo(LocaleItem::kNegativeSign);
    magnitude = 0 - magnitude;
  }
  if (precision < kMilliseconds) return S_OK;
  Status status = AppendMagnitude(magnitude, precision, day_pattern, out);
  if (Failed(status)) out->clear();
  CutFormattedText(out);
  return status;
}

}  // namespace orvo

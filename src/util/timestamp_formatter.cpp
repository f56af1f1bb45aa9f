#include "util/timestamp_formatter.h"

#include "platform/clock.h"
#include "platform/locale.h"
#include "util/date_time.h"

namespace orvo {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
// A stretch of 2^42 nanoseconds lasts 73 minutes: no time zone has ever changed its offset twice within one.
constexpr unsigned kStretchShift = 42;

}  // namespace

Status TimestampFormatter::FindOffset(std::uint64_t time, std::int32_t* seconds) {
  std::uint64_t number = time >> kStretchShift;
  OffsetStretch& stretch = stretches_[number % stretches_.size()];
  if (stretch.number == number) {
    *seconds = stretch.offset;
    return S_OK;
  }
  Status status = LocalOffset(time, seconds);
  if (Failed(status)) return status;
  // Kept only when it holds from the first to the last moment of the stretch.
  std::uint64_t first = number << kStretchShift;
  std::uint64_t last = first | ((std::uint64_t{1} << kStretchShift) - 1);
  std::int32_t at_first = 0;
  std::int32_t at_last = 0;
  if (Succeeded(LocalOffset(first, &at_first)) && Succeeded(LocalOffset(last, &at_last)) && at_first == *seconds &&
      at_last == *seconds) {
    stretch = {number, *seconds};
  }
  return S_OK;
}

Status TimestampFormatter::FindDay(std::uint64_t time, std::int64_t number, const std::u16string** text) {
  Day& day = days_[static_cast<std::uint64_t>(number) % days_.size()];
  *text = &day.text;
  if (day.number == number) return S_OK;
  day.number = std::numeric_limits<std::int64_t>::min();
  Status status = FormatDate(time, &day.text);
  if (Succeeded(status)) day.number = number;
  return status;
}

Status TimestampFormatter::Append(std::uint64_t time, std::u16string* out) {
  if (!out) return E_POINTER;
  std::int32_t offset = 0;
  Status status = FindOffset(time, &offset);
  if (Failed(status)) return status;

  std::int64_t local = static_cast<std::int64_t>(time / kNanosecondsPerSecond) + offset;
  std::int64_t day = local / kSecondsPerDay - (local % kSecondsPerDay < 0 ? 1 : 0);
  auto second = static_cast<int>(local - day * kSecondsPerDay);
  const std::u16string* date = nullptr;
  status = FindDay(time, day, &date);
  if (Succeeded(status)) status = FormatTime24(second / 3600, second / 60 % 60, second % 60, &time_text_);
  if (Failed(status)) return status;
  *out += *date;
  *out += u' ';
  *out += time_text_;
  return S_OK;
}

}  // namespace orvo

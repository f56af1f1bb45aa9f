#include "util/timestamp_formatter.h"

#include <algorithm>
#include <limits>

#include "platform/locale.h"
#include "util/date_time.h"

namespace orvo {
namespace {

constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kSecondsPerDay = 86400;
// A stretch of 2^42 nanoseconds lasts 73 minutes: no time zone has ever changed its offset twice within one.
constexpr unsigned kStretchShift = 42;
constexpr std::size_t kStretchCount = 64;
constexpr std::size_t kDayCount = 16;

std::u16string TimeText(int hour, int minute, int second) {
  std::u16string text;
  if (Failed(FormatTime24(hour, minute, second, &text))) text.clear();
  return text;
}

}  // namespace

/// The offset of local time to UTC over one stretch of time.
struct TimestampFormatter::OffsetStretch {
  std::uint64_t number = std::numeric_limits<std::uint64_t>::max();
  std::int32_t offset = 0;
};

struct TimestampFormatter::Day {
  std::int64_t number = std::numeric_limits<std::int64_t>::min();
  std::u16string text;
};

/// The locale's 24-hour form, learnt from examples: a text per hour, then minutes and seconds as two digits each at
/// fixed places from the end. A locale whose form is any other is asked for every time of day.
class TimestampFormatter::TimeForm {
 public:
  TimeForm() : regular_(Learn()) {}

  Status Append(int hour, int minute, int second, std::u16string* out) const {
    if (!regular_) {
      std::u16string text;
      Status status = FormatTime24(hour, minute, second, &text);
      if (Succeeded(status)) *out += text;
      return status;
    }
    AppendRegular(hour, minute, second, out);
    return S_OK;
  }

 private:
  bool Learn() {
    std::u16string base = TimeText(10, 20, 30);
    std::size_t minute = FirstDifference(base, TimeText(10, 31, 30));
    std::size_t second = FirstDifference(base, TimeText(10, 20, 41));
    if (minute + 2 > second || second + 2 > base.size()) return false;
    between_ = base.substr(minute + 2, second - minute - 2);
    behind_ = base.substr(second + 2);
    for (std::size_t digit = 0; digit < digits_.size(); ++digit) {
      std::u16string text = TimeText(10, 20, 30 + static_cast<int>(digit));
      if (text.size() != base.size()) return false;
      digits_[digit] = text[second + 1];
    }
    std::size_t tail = base.size() - minute;
    for (std::size_t hour = 0; hour < hours_.size(); ++hour) {
      std::u16string text = TimeText(static_cast<int>(hour), 20, 30);
      if (text.size() < tail) return false;
      hours_[hour] = text.substr(0, text.size() - tail);
    }
    return Proves();
  }

  // Compares what was learnt with further examples: every hour, minute and second once.
  bool Proves() const {
    std::u16string text;
    for (int i = 0; i < 60; ++i) {
      text.clear();
      AppendRegular(i % 24, i, 59 - i, &text);
      if (text != TimeText(i % 24, i, 59 - i)) return false;
    }
    return true;
  }

  // The place of the first difference of two texts of one length; far away when there is none.
  static std::size_t FirstDifference(const std::u16string& a, const std::u16string& b) {
    auto [at, other] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    if (a.size() != b.size() || at == a.end()) return std::numeric_limits<std::size_t>::max() / 2;
    return static_cast<std::size_t>(at - a.begin());
  }

  void AppendRegular(int hour, int minute, int second, std::u16string* out) const {
    *out += hours_[static_cast<std::size_t>(hour)];
    AppendTwoDigits(minute, out);
    *out += between_;
    AppendTwoDigits(second, out);
    *out += behind_;
  }

  void AppendTwoDigits(int value, std::u16string* out) const {
    *out += digits_[static_cast<std::size_t>(value / 10)];
    *out += digits_[static_cast<std::size_t>(value % 10)];
  }

  std::array<char16_t, 10> digits_{};
  std::array<std::u16string, 24> hours_;  // with what stands before and behind the hour
  std::u16string between_;                // minutes and seconds
  std::u16string behind_;
  bool regular_;
};

TimestampFormatter::TimestampFormatter()
    : form_(std::make_unique<TimeForm>()),
      stretches_(std::make_unique<OffsetStretch[]>(kStretchCount)),
      days_(std::make_unique<Day[]>(kDayCount)) {}

TimestampFormatter::~TimestampFormatter() = default;

Status TimestampFormatter::FindOffset(std::uint64_t time, std::int32_t* seconds) {
  std::uint64_t number = time >> kStretchShift;
  OffsetStretch& stretch = stretches_[number % kStretchCount];
  if (stretch.number == number) {
    *seconds = stretch.offset;
    return S_OK;
  }
  Status status = LocalOffset(time, seconds);
  if (Failed(status)) return status;
  // Kept only when it holds from the first to the last moment of the stretch.
  std::uint64_t first = number << kStretchShift;
  std::uint64_t last = first | ((1ULL << kStretchShift) - 1);
  std::int32_t at_first = 0;
  std::int32_t at_last = 0;
  if (Succeeded(LocalOffset(first, &at_first)) && Succeeded(LocalOffset(last, &at_last)) && at_first == *seconds &&
      at_last == *seconds) {
    stretch = {number, *seconds};
  }
  return S_OK;
}

Status TimestampFormatter::FindDay(std::uint64_t time, std::int64_t number, const std::u16string** text) {
  Day& day = days_[static_cast<std::uint64_t>(number) % kDayCount];
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
  auto second_of_day = static_cast<int>(local - day * kSecondsPerDay);
  const std::u16string* date = nullptr;
  status = FindDay(time, day, &date);
  if (Failed(status)) return status;

  std::size_t begin = out->size();
  *out += *date;
  *out += u' ';
  status = form_->Append(second_of_day / 3600, second_of_day % 3600 / 60, second_of_day % 60, out);
  if (Failed(status)) out->resize(begin);
  return status;
}

}  // namespace orvo

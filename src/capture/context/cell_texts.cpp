#include "capture/context/cell_texts.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "capture/names/name_directory.h"
#include "platform/error.h"
#include "platform/fixed_text.h"
#include "platform/locale.h"
#include "platform/utf.h"

namespace orvo {
namespace {

constexpr std::uint64_t kSecond = 1'000'000'000;

std::u16string Widened(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

/// The microseconds within the second, behind a point.
void AppendMicroseconds(std::uint64_t nanoseconds, std::u16string* text) {
  constexpr std::size_t kDigits = 6;
  text->push_back(u'.');
  text->append(kDigits, u'0');
  auto rest = static_cast<unsigned>(nanoseconds % kSecond / 1000);
  for (auto digit = text->rbegin(); rest != 0; ++digit, rest /= 10) *digit = static_cast<char16_t>(u'0' + rest % 10);
}

}  // namespace

std::u16string CountCell(std::uint64_t value) {
  std::array<char, 24> text;
  const char* end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  return Widened({text.data(), end});
}

std::u16string RealCell(double value, int digits) {
  if (!std::isfinite(value)) return {};
  std::array<char, 352> text;  // the largest double has 309 digits before the point
  const char* end = WriteFixed(value, digits, text.data(), text.data() + text.size());
  return Widened({text.data(), end});
}

std::u16string TimeCell(std::uint64_t time) {
  if (time == 0) return {};
  constexpr std::size_t kUsualLength = 32;
  CalendarTime local;
  std::u16string text;
  std::u16string clock;
  text.reserve(kUsualLength);
  Check(ToLocalTime(time, &local));
  Check(FormatShortDate(local, &text));
  Check(FormatTime24(local.hour, local.minute, local.second, &clock));
  text.push_back(u' ');
  text.append(clock);
  AppendMicroseconds(time, &text);
  return text;
}

std::u16string DurationCell(std::uint64_t nanoseconds) {
  std::uint64_t seconds = nanoseconds / kSecond;
  char text[48];
  int length = std::snprintf(text, sizeof text, "%llu:%02u:%02u", static_cast<unsigned long long>(seconds / 3600),
                             static_cast<unsigned>(seconds / 60 % 60), static_cast<unsigned>(seconds % 60));
  std::u16string duration = Widened({text, static_cast<std::size_t>(length)});
  AppendMicroseconds(nanoseconds, &duration);
  return duration;
}

std::u16string WireTextCell(std::string_view utf8) {
  std::u16string text;
  for (std::size_t at = 0; at < utf8.size();) {
    CodePoint next = NextCodePoint(utf8, at);
    at += next.length;
    AppendCodePoint(!next.valid || IsInvisible(next.value) ? U'?' : next.value, &text);
  }
  return text;
}

std::u16string HexCell(std::uint32_t value) {
  char text[16];
  int length = std::snprintf(text, sizeof text, "0x%08X", value);
  return Widened({text, static_cast<std::size_t>(length)});
}

}  // namespace orvo

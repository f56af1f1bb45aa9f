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

std::u16string Microseconds(std::uint64_t nanoseconds) {
  char text[16];
  int length = std::snprintf(text, sizeof text, ".%06u", static_cast<unsigned>(nanoseconds % kSecond / 1000));
  return Widened({text, static_cast<std::size_t>(length)});
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
  CalendarTime local;
  std::u16string text;
  std::u16string clock;
  Check(ToLocalTime(time, &local));
  Check(FormatShortDate(local, &text));
  Check(FormatTime24(local.hour, local.minute, local.second, &clock));
  return text + u" " + clock + Microseconds(time);
}

std::u16string DurationCell(std::uint64_t nanoseconds) {
  std::uint64_t seconds = nanoseconds / kSecond;
  char text[48];
  int length = std::snprintf(text, sizeof text, "%llu:%02u:%02u", static_cast<unsigned long long>(seconds / 3600),
                             static_cast<unsigned>(seconds / 60 % 60), static_cast<unsigned>(seconds % 60));
  return Widened({text, static_cast<std::size_t>(length)}) + Microseconds(nanoseconds);
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

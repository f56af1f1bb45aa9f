#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include <algorithm>

#include "platform/code_page.h"
#include "platform/error.h"
#include "platform/utf.h"

namespace orvo {
namespace {

struct BestFit {
  char32_t code_point;
  std::string_view ascii;
};

// Letters and signs whose ASCII form their decomposition does not tell, by code point.
constexpr BestFit kBestFits[] = {
    {0x00A1, "!"},  {0x00A6, "|"},  {0x00A9, "(c)"}, {0x00AB, "<<"}, {0x00AD, "-"},  {0x00AE, "(R)"}, {0x00B0, "o"},
    {0x00B4, "'"},  {0x00B5, "u"},  {0x00B7, "."},   {0x00BB, ">>"}, {0x00C6, "AE"}, {0x00D0, "D"},   {0x00D7, "x"},
    {0x00D8, "O"},  {0x00DE, "TH"}, {0x00DF, "ss"},  {0x00E6, "ae"}, {0x00F0, "d"},  {0x00F7, "/"},   {0x00F8, "o"},
    {0x00FE, "th"}, {0x0110, "D"},  {0x0111, "d"},   {0x0126, "H"},  {0x0127, "h"},  {0x0131, "i"},   {0x0138, "k"},
    {0x0141, "L"},  {0x0142, "l"},  {0x014A, "N"},   {0x014B, "n"},  {0x0152, "OE"}, {0x0153, "oe"},  {0x0166, "T"},
    {0x0167, "t"},  {0x018F, "E"},  {0x0192, "f"},   {0x0259, "e"},  {0x03BC, "u"},  {0x066B, "."},   {0x066C, ","},
    {0x1E9E, "SS"}, {0x2010, "-"},  {0x2012, "-"},   {0x2013, "-"},  {0x2014, "-"},  {0x2015, "-"},   {0x2018, "'"},
    {0x2019, "'"},  {0x201A, "'"},  {0x201B, "'"},   {0x201C, "\""}, {0x201D, "\""}, {0x201E, "\""},  {0x201F, "\""},
    {0x2022, "*"},  {0x2032, "'"},  {0x2033, "\""},  {0x2039, "<"},  {0x203A, ">"},  {0x2044, "/"},   {0x20AC, "EUR"},
    {0x2190, "<-"}, {0x2192, "->"}, {0x2212, "-"},   {0x2215, "/"},  {0x2217, "*"},  {0x2264, "<="},  {0x2265, ">="},
};

static_assert(std::ranges::is_sorted(kBestFits, {}, &BestFit::code_point));

/// Appends the best fit of one code point that its decomposition is not asked for; false when there is none.
bool AppendDirectFit(char32_t code_point, std::string* out) {
  auto value = static_cast<UChar32>(code_point);
  const auto* fit = std::ranges::lower_bound(kBestFits, code_point, {}, &BestFit::code_point);
  if (code_point < 0x80) {
    out->push_back(static_cast<char>(code_point));
  } else if (fit != std::end(kBestFits) && fit->code_point == code_point) {
    *out += fit->ascii;
  } else if (std::int32_t digit = u_charDigitValue(value); digit >= 0 && digit <= 9) {
    out->push_back(static_cast<char>('0' + digit));
  } else {
    // A mark loses itself, and what shows nothing (joiners, direction marks) is not missed.
    return (U_GET_GC_MASK(value) & U_GC_M_MASK) != 0 || u_hasBinaryProperty(value, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
  }
  return true;
}

/// Appends the ASCII form of one code point, "?" when a part of it has none.
void AppendBestFit(const UNormalizer2* normalizer, CodePoint code_point, std::string* out) {
  if (code_point.valid && AppendDirectFit(code_point.value, out)) return;
  char16_t parts[64];
  UErrorCode error = U_ZERO_ERROR;
  std::int32_t length = -1;
  if (code_point.valid) {
    length = unorm2_getDecomposition(normalizer, static_cast<UChar32>(code_point.value), parts,
                                     static_cast<std::int32_t>(std::size(parts)), &error);
  }
  std::size_t start = out->size();
  bool complete = U_SUCCESS(error) && length > 0;
  if (complete) {
    ForEachRun(
        std::u16string_view(parts, static_cast<std::size_t>(length)),
        [&](std::u16string_view ascii) { AppendAscii(ascii, out); },
        [&](CodePoint part) { complete = complete && AppendDirectFit(part.value, out); });
  }
  if (!complete) {
    out->resize(start);
    out->push_back('?');
  }
}

}  // namespace

Status AppendSystemNarrow(std::u16string_view text, std::string* out) {
  return Guard([&] {
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* normalizer = unorm2_getNFKDInstance(&error);
    if (U_FAILURE(error)) Raise(E_FAIL);
    ForEachRun(
        text, [&](std::u16string_view ascii) { AppendAscii(ascii, out); },
        [&](CodePoint code_point) { AppendBestFit(normalizer, code_point, out); });
  });
}

}  // namespace orvo

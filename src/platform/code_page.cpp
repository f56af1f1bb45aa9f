#include "platform/code_page.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <optional>

#include "platform/error.h"
#include "platform/utf.h"

namespace orvo {
namespace {

constexpr char kUtf8[] = "UTF-8";

/// Owns a converter of the encodings library.
class Converter {
 public:
  Converter() = default;
  explicit Converter(const std::string& name) {
    UErrorCode error = U_ZERO_ERROR;
    converter_ = ucnv_open(name.c_str(), &error);
    if (U_FAILURE(error)) converter_ = nullptr;
  }
  Converter(const Converter&) = delete;
  Converter& operator=(Converter&& other) noexcept {
    std::swap(converter_, other.converter_);
    return *this;
  }
  ~Converter() {
    if (converter_) ucnv_close(converter_);
  }

  UConverter* get() const { return converter_; }
  explicit operator bool() const { return converter_ != nullptr; }

 private:
  UConverter* converter_ = nullptr;
};

/// True for encodings without shift states in which every printable ASCII character and the usual controls stand for
/// themselves, so that runs of ASCII can be copied.
bool IsAsciiSuperset(UConverter* converter) {
  constexpr UConverterType kStateless[] = {UCNV_SBCS, UCNV_MBCS, UCNV_LATIN_1, UCNV_US_ASCII, UCNV_UTF8};
  if (std::ranges::find(kStateless, ucnv_getType(converter)) == std::end(kStateless)) return false;
  std::string ascii = "\t\n\r";
  for (char c = 0x20; c < 0x7F; ++c) ascii += c;
  char16_t decoded[256];
  UErrorCode error = U_ZERO_ERROR;
  std::int32_t length = ucnv_toUChars(converter, decoded, static_cast<std::int32_t>(std::size(decoded)), ascii.data(),
                                      static_cast<std::int32_t>(ascii.size()), &error);
  if (U_FAILURE(error) || static_cast<std::size_t>(length) != ascii.size()) return false;
  if (!std::equal(ascii.begin(), ascii.end(), decoded)) return false;
  char encoded[256];
  length = ucnv_fromUChars(converter, encoded, static_cast<std::int32_t>(std::size(encoded)), decoded, length, &error);
  return U_SUCCESS(error) && std::string_view(encoded, static_cast<std::size_t>(length)) == ascii;
}

/// An encoding by the name under which others know it, and by the library's own, which alone is unambiguous.
struct Encoding {
  std::string name;
  std::string converter;
};

Encoding EncodingOf(UConverter* converter) {
  UErrorCode error = U_ZERO_ERROR;
  const char* own = ucnv_getName(converter, &error);
  if (U_FAILURE(error)) Raise(E_FAIL);
  for (const char* standard : {"MIME", "IANA"}) {
    UErrorCode ignored = U_ZERO_ERROR;
    if (const char* known = ucnv_getStandardName(own, standard, &ignored)) return {known, own};
  }
  return {own, own};
}

/// The encoding of that name, when there is one that can serve as code page.
std::optional<Encoding> FindEncoding(std::string_view name) {
  // A comma would begin the library's own options.
  if (name.empty() || name.size() > 100 || name.find_first_of(std::string_view(",\0", 2)) != name.npos) {
    return std::nullopt;
  }
  Converter converter{std::string(name)};
  if (!converter || !IsAsciiSuperset(converter.get())) return std::nullopt;
  return EncodingOf(converter.get());
}

/// The codeset of the user's locale: what stands behind the full stop, as in "de_DE.ISO-8859-15@euro".
Encoding UserCodeset() {
  for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* value = std::getenv(variable);
    if (!value || !*value) continue;
    std::string_view locale = value;
    std::size_t dot = locale.find('.');
    if (dot == locale.npos) break;
    locale.remove_prefix(dot + 1);
    if (std::optional<Encoding> encoding = FindEncoding(locale.substr(0, locale.find('@')))) return *encoding;
    break;
  }
  return {kUtf8, kUtf8};
}

struct Selection {
  std::mutex lock;
  Encoding encoding = UserCodeset();
  // Changes with the encoding, so that a thread sees without the lock that its converter is out of date.
  std::atomic<std::uint64_t> generation{1};
};

Selection& Selected() {
  static Selection selection;
  return selection;
}

/// What a thread keeps ready for the selected code page.
struct ThreadCodePage {
  std::uint64_t generation = 0;
  bool is_utf8 = false;
  Converter converter;
};

/// Writes "?" for everything that has no bytes in the code page; the library's own callback would drop some of it.
void WriteQuestionMark(const void*, UConverterFromUnicodeArgs* arguments, const char16_t*, std::int32_t, UChar32,
                       UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;  // the converter is being reset or closed
  *error = U_ZERO_ERROR;
  ucnv_cbFromUWriteBytes(arguments, "?", 1, 0, error);
}

/// This thread's code page, made anew when the process's has changed. Raises E_FAIL.
ThreadCodePage& CurrentCodePage() {
  thread_local ThreadCodePage page;
  Selection& selection = Selected();
  if (page.generation == selection.generation.load(std::memory_order_acquire)) return page;

  std::string name;
  std::uint64_t generation = 0;
  {
    std::lock_guard lock(selection.lock);
    name = selection.encoding.converter;
    generation = selection.generation.load(std::memory_order_relaxed);
  }
  page.is_utf8 = name == kUtf8;
  if (!page.is_utf8) {
    page.converter = Converter(name);
    if (!page.converter) Raise(E_FAIL);
    UErrorCode error = U_ZERO_ERROR;
    ucnv_setFromUCallBack(page.converter.get(), WriteQuestionMark, nullptr, nullptr, nullptr, &error);
    if (U_FAILURE(error)) Raise(E_FAIL);
  }
  page.generation = generation;
  return page;
}

void AppendConverted(UConverter* converter, std::u16string_view text, std::string* out) {
  ucnv_resetFromUnicode(converter);
  const char16_t* source = text.data();
  const char16_t* end = source + text.size();
  UErrorCode error = U_BUFFER_OVERFLOW_ERROR;
  while (error == U_BUFFER_OVERFLOW_ERROR) {
    char bytes[512];
    char* target = bytes;
    error = U_ZERO_ERROR;
    ucnv_fromUnicode(converter, &target, bytes + sizeof bytes, &source, end, nullptr, true, &error);
    out->append(bytes, target);
  }
  if (U_FAILURE(error)) Raise(E_FAIL);
}

void AppendUtf8(std::u16string_view text, std::string_view replacement, std::string* out) {
  ForEachRun(
      text, [&](std::u16string_view ascii) { AppendAscii(ascii, out); },
      [&](CodePoint code_point) {
        if (code_point.valid) {
          AppendCodePoint(code_point.value, out);
        } else {
          *out += replacement;
        }
      });
}

/// Copies the runs of ASCII and converts what stands between them.
void AppendInCodePage(std::u16string_view text, UConverter* converter, std::string* out) {
  while (!text.empty()) {
    std::size_t ascii = AsciiRun(text);
    AppendAscii(text.substr(0, ascii), out);
    text.remove_prefix(ascii);
    const auto* end = std::ranges::find_if(text, [](char16_t unit) { return unit < 0x80; });
    auto other = static_cast<std::size_t>(end - text.begin());
    if (other > 0) AppendConverted(converter, text.substr(0, other), out);
    text.remove_prefix(other);
  }
}

}  // namespace

std::optional<std::string> DecodeToUtf8(std::string_view name, std::string_view bytes) {
  const std::optional<Encoding> encoding = FindEncoding(name);
  if (!encoding || encoding->converter == kUtf8 || encoding->converter == "US-ASCII") return std::nullopt;
  if (bytes.size() > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  const Converter converter(encoding->converter);
  std::string text;
  std::int32_t length = 0;
  // The first round measures.
  for (int round = 0; round < 2; ++round) {
    text.resize(static_cast<std::size_t>(length));
    UErrorCode error = U_ZERO_ERROR;
    length = ucnv_toAlgorithmic(UCNV_UTF8, converter.get(), text.data(), length, bytes.data(),
                                static_cast<std::int32_t>(bytes.size()), &error);
    if (U_FAILURE(error) && error != U_BUFFER_OVERFLOW_ERROR) return std::nullopt;
  }
  return text;
}

Status SetCodePage(std::string_view name) {
  return Guard([&] {
    std::optional<Encoding> encoding = FindEncoding(name);
    if (!encoding) Raise(E_INVALIDARG);
    Selection& selection = Selected();
    std::lock_guard lock(selection.lock);
    selection.encoding = std::move(*encoding);
    selection.generation.fetch_add(1, std::memory_order_release);
  });
}

std::string CodePageName() {
  Selection& selection = Selected();
  std::lock_guard lock(selection.lock);
  return selection.encoding.name;
}

Status AppendNarrow(std::u16string_view text, std::string* out) {
  return Guard([&] {
    if (AsciiRun(text) == text.size()) return AppendAscii(text, out);
    ThreadCodePage& page = CurrentCodePage();
    if (page.is_utf8) {
      AppendUtf8(text, "?", out);
    } else {
      AppendInCodePage(text, page.converter.get(), out);
    }
  });
}

std::string ToUtf8(std::u16string_view text) {
  std::string utf8;
  AppendUtf8(text, "\xEF\xBF\xBD", &utf8);
  return utf8;
}

std::u16string FromUtf8(std::string_view text) {
  std::u16string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    CodePoint code_point = NextCodePoint(text, at);
    AppendCodePoint(code_point.value, &result);
    at += code_point.length;
  }
  return result;
}

}  // namespace orvo

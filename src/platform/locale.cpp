#include "platform/locale.h"

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/localebuilder.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/uchar.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/code_page.h"
#include "platform/error.h"

namespace orvo {
namespace {

constexpr char kDefaultTag[] = "en-US";

std::u16string TextOf(const icu::UnicodeString& text) {
  return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

// ---- Names ---------------------------------------------------------------------------------------------------------

/// The script that the modifier of an environment's locale name stands for, as in "sr_RS@latin".
std::string_view ScriptOfModifier(std::string_view modifier) {
  if (modifier == "latin") return "Latn";
  if (modifier == "cyrillic") return "Cyrl";
  if (modifier == "devanagari") return "Deva";
  return {};
}

/// The locale of a name in either form; nothing when it names no known language.
std::optional<icu::Locale> LocaleFromName(std::string_view name) {
  if (name.size() > 100) return std::nullopt;
  std::size_t at = name.find('@');
  std::string_view modifier = at == name.npos ? std::string_view() : name.substr(at + 1);
  std::string tag(name.substr(0, name.find_first_of(".@")));
  for (char& c : tag) {
    if (c == '_') c = '-';
  }
  if (tag == "C" || tag == "POSIX") tag = kDefaultTag;

  UErrorCode error = U_ZERO_ERROR;
  icu::LocaleBuilder builder;
  builder.setLanguageTag(tag);
  if (std::string_view script = ScriptOfModifier(modifier); !script.empty()) {
    builder.setScript({script.data(), static_cast<std::int32_t>(script.size())});
  }
  icu::Locale locale = builder.build(error);
  if (U_FAILURE(error) || locale.isBogus() || *locale.getISO3Language() == 0) return std::nullopt;
  return locale;
}

/// The first of the environment's settings that says anything.
icu::Locale LocaleFromEnvironment() {
  for (const char* variable : {"LC_ALL", "LC_TIME", "LC_NUMERIC", "LANG"}) {
    const char* value = std::getenv(variable);
    if (!value || !*value) continue;
    if (std::optional<icu::Locale> locale = LocaleFromName(value)) return *locale;
    break;
  }
  return *LocaleFromName(kDefaultTag);
}

std::string LanguageTag(const icu::Locale& locale) {
  UErrorCode error = U_ZERO_ERROR;
  auto tag = locale.toLanguageTag<std::string>(error);
  return U_SUCCESS(error) ? tag : kDefaultTag;
}

// ---- What is known of a locale -------------------------------------------------------------------------------------

/// A part of a time form: a field with its smallest number of digits, or a literal text.
struct TimePiece {
  enum class Kind { kLiteral, kHour, kMinute, kSecond };
  Kind kind = Kind::kLiteral;
  std::size_t digits = 0;
  std::u16string literal;
};

struct LocaleData {
  std::u16string name;
  std::u16string decimal = u".";
  std::u16string thousand = u",";
  std::u16string leading_zero = u"1";
  std::u16string grouping = u"3;0";
  std::u16string negative_number = u"1";
  std::u16string negative_sign = u"-";
  std::array<std::u16string, 10> digits;
  std::array<std::u16string, 100> pairs;  // every number of two digits, for the times of many rows
  std::vector<TimePiece> time;
  std::unique_ptr<icu::SimpleDateFormat> date;
  mutable std::mutex date_lock;           // guards what follows too: a format object serves one thread at a time
  mutable std::array<int, 3> last_day{};  // year, month and day that were formatted last; many rows are of one day
  mutable std::u16string last_date;
};

void ReadSymbols(const icu::Locale& locale, LocaleData* data) {
  for (std::size_t i = 0; i < data->digits.size(); ++i) data->digits[i] = static_cast<char16_t>(u'0' + i);
  UErrorCode error = U_ZERO_ERROR;
  icu::DecimalFormatSymbols symbols(locale, error);
  if (U_FAILURE(error)) return;
  data->decimal = TextOf(symbols.getConstSymbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol));
  data->thousand = TextOf(symbols.getConstSymbol(icu::DecimalFormatSymbols::kGroupingSeparatorSymbol));
  data->negative_sign = TextOf(symbols.getConstSymbol(icu::DecimalFormatSymbols::kMinusSignSymbol));
  for (std::size_t i = 0; i < data->digits.size(); ++i) {
    data->digits[i] = TextOf(symbols.getConstDigitSymbol(static_cast<std::int32_t>(i)));
  }
}

/// The order of sign and number, by what the locale's form puts around a negative number.
std::u16string NegativeOrder(const icu::DecimalFormat& format) {
  icu::UnicodeString prefix;
  icu::UnicodeString suffix;
  format.getNegativePrefix(prefix);
  format.getNegativeSuffix(suffix);
  auto is_blank = [](char16_t c) { return c == u' ' || c == u'\u00A0' || c == u'\u202F'; };
  if (prefix.indexOf(u'(') >= 0) return u"0";
  if (!prefix.isEmpty()) return is_blank(prefix[prefix.length() - 1]) ? u"2" : u"1";
  if (!suffix.isEmpty()) return is_blank(suffix[0]) ? u"4" : u"3";
  return u"1";
}

void ReadNumberForm(const icu::Locale& locale, LocaleData* data) {
  UErrorCode error = U_ZERO_ERROR;
  std::unique_ptr<icu::NumberFormat> form(icu::NumberFormat::createInstance(locale, UNUM_DECIMAL, error));
  // A numbering system of words rather than digits has no such form; the initial values stand then.
  const auto* decimal = dynamic_cast<const icu::DecimalFormat*>(form.get());
  if (U_FAILURE(error) || !decimal) return;
  data->leading_zero = decimal->getMinimumIntegerDigits() > 0 ? u"1" : u"0";
  data->negative_number = NegativeOrder(*decimal);
  int first = decimal->isGroupingUsed() ? decimal->getGroupingSize() : 0;
  int second = decimal->getSecondaryGroupingSize();
  data->grouping = FromUtf8(std::to_string(first));
  if (first > 0 && second > 0 && second != first) data->grouping += u";" + FromUtf8(std::to_string(second));
  if (first > 0) data->grouping += u";0";
}

/// Cuts a pattern of the locale data (Unicode Technical Standard 35, "Date Format Patterns") into runs of one
/// letter, handed over as they are, and literal texts without their quotes.
template <class Field, class Literal>
void ForEachPatternPart(std::u16string_view pattern, Field&& field, Literal&& literal) {
  bool quoted = false;
  for (std::size_t at = 0; at < pattern.size();) {
    char16_t c = pattern[at];
    if (c == u'\'') {
      bool is_apostrophe = at + 1 < pattern.size() && pattern[at + 1] == u'\'';
      if (is_apostrophe) literal(pattern.substr(at, 1));
      if (!is_apostrophe) quoted = !quoted;
      at += is_apostrophe ? 2 : 1;
      continue;
    }
    bool is_letter = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
    std::size_t end = at + 1;
    if (is_letter && !quoted) {
      while (end < pattern.size() && pattern[end] == c) ++end;
      field(pattern.substr(at, end - at));
    } else {
      literal(pattern.substr(at, 1));
    }
    at = end;
  }
}

TimePiece::Kind KindOfField(char16_t letter) {
  switch (letter) {
    case u'H':
    case u'k': return TimePiece::Kind::kHour;
    case u'm': return TimePiece::Kind::kMinute;
    case u's': return TimePiece::Kind::kSecond;
    default: return TimePiece::Kind::kLiteral;
  }
}

std::vector<TimePiece> CompileTime(std::u16string_view pattern) {
  std::vector<TimePiece> pieces;
  ForEachPatternPart(
      pattern,
      [&](std::u16string_view field) {
        // Any other field would be a marker, which the form goes without.
        TimePiece::Kind kind = KindOfField(field[0]);
        if (kind != TimePiece::Kind::kLiteral) pieces.push_back({kind, field.size(), {}});
      },
      [&](std::u16string_view literal) {
        if (pieces.empty() || pieces.back().kind != TimePiece::Kind::kLiteral) pieces.emplace_back();
        pieces.back().literal += literal;
      });
  return pieces;
}

/// True for a time of day such as "9 h 22 min 3 s": reports write durations and fractions in the same form, where only
/// signs may stand between the numbers.
bool NamesItsUnits(const icu::UnicodeString& pattern) {
  for (std::int32_t at = 0; at < pattern.length(); ++at) {
    const char16_t unit = pattern[at];
    if (u_isalpha(unit) && unit != u'H' && unit != u'm' && unit != u's') return true;
  }
  return false;
}

void ReadTimeForm(const icu::Locale& locale, LocaleData* data) {
  UErrorCode error = U_ZERO_ERROR;
  std::unique_ptr<icu::DateTimePatternGenerator> generator(
      icu::DateTimePatternGenerator::createInstance(locale, error));
  icu::UnicodeString pattern;
  if (U_SUCCESS(error)) pattern = generator->getBestPattern(icu::UnicodeString(u"Hms"), error);
  const bool usable = U_SUCCESS(error) && !NamesItsUnits(pattern);
  data->time = CompileTime(usable ? TextOf(pattern) : u"HH:mm:ss");
}

/// The pattern with every two-digit year written in full.
icu::UnicodeString WithFullYear(const icu::UnicodeString& pattern) {
  icu::UnicodeString result;
  bool quoted = false;
  for (std::int32_t at = 0; at < pattern.length();) {
    std::int32_t end = at + 1;
    while (end < pattern.length() && pattern[at] == u'y' && pattern[end] == u'y') ++end;
    if (pattern[at] == u'\'') quoted = !quoted;
    result.append(pattern, at, end - at);
    if (!quoted && pattern[at] == u'y' && end - at == 2) result.append(u"yy", 2);
    at = end;
  }
  return result;
}

void ReadDateForm(const icu::Locale& locale, LocaleData* data) {
  std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateInstance(icu::DateFormat::kShort, locale));
  auto* simple = dynamic_cast<icu::SimpleDateFormat*>(format.get());
  if (!simple) return;
  icu::UnicodeString pattern;
  simple->toPattern(pattern);
  simple->applyPattern(WithFullYear(pattern));
  simple->adoptTimeZone(icu::TimeZone::getGMT()->clone());
  data->date.reset(simple);
  (void)format.release();
}

// ---- The user's locale ---------------------------------------------------------------------------------------------

/// The locales used so far. They are never given back, so that a thread may go on with the one it has seen.
struct Locales {
  std::mutex lock;
  std::map<std::string, std::unique_ptr<LocaleData>> known;
  std::atomic<const LocaleData*> user{nullptr};
};

Locales& AllLocales() {
  static auto& locales = *new Locales;
  return locales;
}

/// Needs the lock of `locales`.
const LocaleData* DataOf(Locales& locales, const icu::Locale& locale) {
  std::string tag = LanguageTag(locale);
  std::unique_ptr<LocaleData>& data = locales.known[tag];
  if (data) return data.get();
  auto made = std::make_unique<LocaleData>();
  made->name = FromUtf8(tag);
  ReadSymbols(locale, made.get());
  for (std::size_t i = 0; i < made->pairs.size(); ++i) made->pairs[i] = made->digits[i / 10] + made->digits[i % 10];
  ReadNumberForm(locale, made.get());
  ReadTimeForm(locale, made.get());
  ReadDateForm(locale, made.get());
  data = std::move(made);
  return data.get();
}

const LocaleData& UserLocale() {
  Locales& locales = AllLocales();
  const LocaleData* data = locales.user.load(std::memory_order_acquire);
  if (data) return *data;
  std::lock_guard lock(locales.lock);
  data = locales.user.load(std::memory_order_relaxed);
  if (!data) {
    data = DataOf(locales, LocaleFromEnvironment());
    locales.user.store(data, std::memory_order_release);
  }
  return *data;
}

void AppendNumber(const LocaleData& data, int value, std::size_t smallest_length, std::u16string* out) {
  if (value < 100 && (smallest_length == 2 || (value >= 10 && smallest_length < 2))) {
    *out += data.pairs[static_cast<std::size_t>(value)];
    return;
  }
  std::size_t reversed[16];
  std::size_t length = 0;
  do {
    reversed[length++] = static_cast<std::size_t>(value % 10);
    value /= 10;
  } while (value > 0);
  for (std::size_t i = length; i < smallest_length; ++i) *out += data.digits[0];
  while (length > 0) *out += data.digits[reversed[--length]];
}

bool IsCalendarDay(const CalendarTime& date) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (date.month < 1 || date.month > 12 || date.year < 1 || date.year > 9999) return false;
  bool is_leap = date.year % 4 == 0 && (date.year % 100 != 0 || date.year % 400 == 0);
  return date.day >= 1 && date.day <= kDays[date.month - 1] + (date.month == 2 && is_leap ? 1 : 0);
}

thread_local std::uint32_t thread_locale = kUserDefaultLocale;

}  // namespace

Status SetUserLocale(std::string_view name) {
  return Guard([&] {
    std::optional<icu::Locale> locale = LocaleFromName(name);
    if (!locale) Raise(E_INVALIDARG);
    Locales& locales = AllLocales();
    std::lock_guard lock(locales.lock);
    locales.user.store(DataOf(locales, *locale), std::memory_order_release);
  });
}

std::u16string UserLocaleName() {
  return UserLocale().name;
}

std::uint32_t GetThreadLocale() {
  return thread_locale;
}

void SetThreadLocale(std::uint32_t locale) {
  thread_locale = locale;
}

std::u16string LocaleInfo(LocaleItem item) {
  const LocaleData& data = UserLocale();
  switch (item) {
    case LocaleItem::kDecimal: return data.decimal;
    case LocaleItem::kThousand: return data.thousand;
    case LocaleItem::kLeadingZero: return data.leading_zero;
    case LocaleItem::kGrouping: return data.grouping;
    case LocaleItem::kNegativeNumber: return data.negative_number;
    case LocaleItem::kNegativeSign: return data.negative_sign;
  }
  return {};
}

Status FormatShortDate(const CalendarTime& date, std::u16string* out) {
  if (!out) return E_POINTER;
  return Guard([&] {
    out->clear();
    if (!IsCalendarDay(date)) Raise(E_INVALIDARG);
    const LocaleData& data = UserLocale();
    if (!data.date) Raise(E_FAIL);
    std::lock_guard lock(data.date_lock);
    const std::array<int, 3> day{date.year, date.month, date.day};
    if (data.last_day == day) {
      *out = data.last_date;
      return;
    }
    UErrorCode error = U_ZERO_ERROR;
    icu::GregorianCalendar calendar(*icu::TimeZone::getGMT(), icu::Locale::getRoot(), error);
    calendar.clear();
    calendar.set(date.year, date.month - 1, date.day);
    UDate instant = calendar.getTime(error);
    if (U_FAILURE(error)) Raise(E_FAIL);
    icu::UnicodeString text;
    data.date->format(instant, text);
    *out = TextOf(text);
    data.last_date = *out;
    data.last_day = day;
  });
}

Status FormatTime24(int hour, int minute, int second, std::u16string* out) {
  if (!out) return E_POINTER;
  return Guard([&] {
    out->clear();
    // A leap second is a second 60.
    if (hour < 0 || minute < 0 || minute > 59 || second < 0 || second > 60) Raise(E_INVALIDARG);
    const LocaleData& data = UserLocale();
    for (const TimePiece& piece : data.time) {
      switch (piece.kind) {
        case TimePiece::Kind::kLiteral: *out += piece.literal; break;
        case TimePiece::Kind::kHour: AppendNumber(data, hour, piece.digits, out); break;
        case TimePiece::Kind::kMinute: AppendNumber(data, minute, piece.digits, out); break;
        case TimePiece::Kind::kSecond: AppendNumber(data, second, piece.digits, out); break;
      }
    }
  });
}

}  // namespace orvo

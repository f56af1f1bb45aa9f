#include "platform/variant.h"

#include <charconv>
#include <cmath>
#include <concepts>
#include <limits>
#include <system_error>

#include "platform/error.h"
#include "platform/utf.h"

namespace orvo {
namespace {

// The types of the alternatives of Variant::Value, in their order.
constexpr VariantType kTypes[] = {VT_EMPTY, VT_I1,  VT_I2, VT_I4, VT_I8,   VT_UI1, VT_UI2,
                                  VT_UI4,   VT_UI8, VT_R4, VT_R8, VT_BOOL, VT_BSTR};
static_assert(std::size(kTypes) == std::variant_size_v<Variant::Value>);

template <class T>
constexpr bool kIsInteger = std::integral<T> && !std::same_as<T, bool>;
template <class T>
constexpr bool kIs64 = kIsInteger<T> && sizeof(T) == 8;

constexpr std::u16string_view kBlanks = u" \t\r\n\v\f";

std::u16string_view Trimmed(std::u16string_view text) {
  std::size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The text as ASCII without blanks around it and without a leading plus sign; empty when it holds anything else.
std::string NumberText(std::u16string_view text) {
  text = Trimmed(text);
  if (text.starts_with(u'+') && !text.starts_with(u"+-")) text.remove_prefix(1);
  std::string ascii;
  if (AsciiRun(text) == text.size()) AppendAscii(text, &ascii);
  return ascii;
}

/// Reads decimal digits up to the first other character.
template <class T>
T Integer64FromText(std::u16string_view text) {
  text = Trimmed(text);
  bool negative = text.starts_with(u'-');
  if (negative || text.starts_with(u'+')) text.remove_prefix(1);
  std::string ascii = negative ? "-" : "";
  for (char16_t c : text) {
    if (c < u'0' || c > u'9') break;
    ascii += static_cast<char>(c);
  }
  if (ascii == "-0") ascii = "0";
  T value{};
  auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
  if (error != std::errc() || end != ascii.data() + ascii.size()) Raise(E_INVALIDARG);
  return value;
}

double RealFromText(std::u16string_view text) {
  std::string ascii = NumberText(text);
  // The library would also read "inf" and "nan", which are no numbers here.
  if (ascii.find_first_of("0123456789") == ascii.npos) Raise(DISP_E_TYPEMISMATCH);
  double value = 0;
  auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
  if (error == std::errc::result_out_of_range) Raise(DISP_E_OVERFLOW);
  if (error != std::errc() || end != ascii.data() + ascii.size() || !std::isfinite(value)) Raise(DISP_E_TYPEMISMATCH);
  return value;
}

/// Half to even, whatever rounding mode the thread is in.
double Rounded(double value) {
  double below = std::floor(value);
  double rest = value - below;
  if (rest < 0.5) return below;
  if (rest > 0.5) return below + 1;
  return std::fmod(below, 2) == 0 ? below : below + 1;
}

template <class T>
T IntegerFromReal(double value) {
  value = Rounded(value);
  // Both bounds are powers of two or zero, hence exact; a value that is no number fails the comparison.
  constexpr auto kLow = static_cast<double>(std::numeric_limits<T>::min());
  const double beyond = std::ldexp(1.0, std::numeric_limits<T>::digits);
  if (!(value >= kLow && value < beyond)) Raise(DISP_E_OVERFLOW);
  return static_cast<T>(value);
}

template <class T, class S>
T IntegerFromInteger(S source) {
  // Towards 32 bits the low ones are kept, towards 64 the source's sign extends it.
  constexpr bool kAlwaysFits = (kIs64<S> && sizeof(T) == 4) || (kIs64<T> && sizeof(S) < 8);
  if constexpr (!kAlwaysFits) {
    if (!std::in_range<T>(source)) Raise(DISP_E_OVERFLOW);
  }
  return static_cast<T>(source);
}

template <class T>
std::u16string TextFromNumber(T value) {
  char buffer[64];
  auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  (void)error;  // the shortest form of any number is far shorter than the buffer
  return {static_cast<const char*>(buffer), static_cast<const char*>(end)};
}

template <class T, class S>
T Converted(const S& source) {
  if constexpr (std::same_as<T, S>) {
    return source;
  } else if constexpr (std::same_as<S, std::monostate>) {
    return T{};
  } else if constexpr (std::same_as<T, std::monostate>) {
    Raise(DISP_E_TYPEMISMATCH);
  } else if constexpr (std::same_as<S, bool>) {
    return Converted<T>(static_cast<std::int16_t>(source ? -1 : 0));
  } else if constexpr (std::same_as<S, std::u16string>) {
    if constexpr (kIs64<T>) {
      return Integer64FromText<T>(source);
    } else {
      return Converted<T>(RealFromText(source));
    }
  } else if constexpr (std::same_as<T, std::u16string>) {
    return TextFromNumber(source);
  } else if constexpr (std::same_as<T, bool>) {
    return source != 0;
  } else if constexpr (std::same_as<T, float>) {
    auto real = static_cast<double>(source);
    if (std::isfinite(real) && std::abs(real) > std::numeric_limits<float>::max()) Raise(DISP_E_OVERFLOW);
    return static_cast<float>(real);
  } else if constexpr (std::same_as<T, double>) {
    return static_cast<double>(source);
  } else if constexpr (std::floating_point<S>) {
    return IntegerFromReal<T>(static_cast<double>(source));
  } else {
    return IntegerFromInteger<T>(source);
  }
}

template <class T>
Variant ConvertedTo(const Variant::Value& source) {
  return std::visit(
      [](const auto& value) {
        if constexpr (std::same_as<T, std::monostate>) {
          if constexpr (!std::same_as<std::decay_t<decltype(value)>, std::monostate>) Raise(DISP_E_TYPEMISMATCH);
          return Variant();
        } else {
          return Variant(Converted<T>(value));
        }
      },
      source);
}

Variant ConvertedTo(const Variant::Value& source, VariantType type) {
  switch (type) {
    case VT_EMPTY: return ConvertedTo<std::monostate>(source);
    case VT_I1: return ConvertedTo<std::int8_t>(source);
    case VT_I2: return ConvertedTo<std::int16_t>(source);
    case VT_I4: return ConvertedTo<std::int32_t>(source);
    case VT_I8: return ConvertedTo<std::int64_t>(source);
    case VT_UI1: return ConvertedTo<std::uint8_t>(source);
    case VT_UI2: return ConvertedTo<std::uint16_t>(source);
    case VT_UI4: return ConvertedTo<std::uint32_t>(source);
    case VT_UI8: return ConvertedTo<std::uint64_t>(source);
    case VT_R4: return ConvertedTo<float>(source);
    case VT_R8: return ConvertedTo<double>(source);
    case VT_BOOL: return ConvertedTo<bool>(source);
    case VT_BSTR: return ConvertedTo<std::u16string>(source);
  }
  Raise(DISP_E_TYPEMISMATCH);
}

}  // namespace

VariantType Variant::type() const {
  return kTypes[value_.index()];
}

Status ChangeType(Variant* out, const Variant& source, VariantType type) {
  if (!out) return E_POINTER;
  return Guard([&] { *out = ConvertedTo(source.value(), type); });
}

}  // namespace orvo

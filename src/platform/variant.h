#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// The type codes of typed values, with the numbers that interfaces and files use.
enum VariantType : std::uint16_t {
  VT_EMPTY = 0,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_BSTR = 8,
  VT_BOOL = 11,
  VT_I1 = 16,
  VT_UI1 = 17,
  VT_UI2 = 18,
  VT_UI4 = 19,
  VT_I8 = 20,
  VT_UI8 = 21,
};

/// A typed value. Its type is that of the alternative it holds.
class Variant {
 public:
  using Value = std::variant<std::monostate, std::int8_t, std::int16_t, std::int32_t, std::int64_t, std::uint8_t,
                             std::uint16_t, std::uint32_t, std::uint64_t, float, double, bool, std::u16string>;

  Variant() = default;
  template <class T>
  explicit Variant(T value) : value_(std::move(value)) {}
  explicit Variant(std::u16string_view text) : value_(std::u16string(text)) {}
  explicit Variant(const char16_t* text) : Variant(std::u16string_view(text)) {}

  ORVO_PLATFORM_API VariantType type() const;
  const Value& value() const { return value_; }
  /// The text of a VT_BSTR value, empty for every other type.
  std::u16string_view text() const {
    const auto* text = std::get_if<std::u16string>(&value_);
    return text ? std::u16string_view(*text) : std::u16string_view();
  }

 private:
  Value value_;
};

/// Converts a value to another type; `out` is unchanged on failure.
///
/// 64-bit integers (VT_I8, VT_UI8): from text as a decimal number (no digits or out of range: E_INVALIDARG); to text
/// as a decimal number; from 8-, 16- and 32-bit integers by sign or zero extension; between the two with
/// DISP_E_OVERFLOW for a negative value or one above 2^63 - 1; to 32-bit integers by keeping the low 32 bits.
/// Every other conversion: text is read as a number in C notation, blanks around it allowed, rounded half to even for
/// integer targets (no number: DISP_E_TYPEMISMATCH); a value that the target cannot hold is DISP_E_OVERFLOW;
/// VT_EMPTY reads as 0, false or an empty text; VT_BOOL as -1 or 0.
ORVO_PLATFORM_API Status ChangeType(Variant* out, const Variant& source, VariantType type);

}  // namespace orvo

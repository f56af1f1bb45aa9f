#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace orvo {

/// A value of a report's column before a writer words it: nothing, a count, a signed number, a real number, a time
/// (nanoseconds since 1601-01-01 UTC, 0 for never), a duration (nanoseconds), a fixed text, or the bytes of a network
/// name. Small and freely copied: a text lives as long as the program, a name as long as the record that it is from.
class Value {
 public:
  enum class Kind : std::uint8_t { kNothing, kUnsigned, kSigned, kReal, kTime, kDuration, kText, kName };

  constexpr Value() : kind_(Kind::kNothing), unsigned_(0) {}
  static constexpr Value Unsigned(std::uint64_t value) { return {Kind::kUnsigned, value}; }
  static constexpr Value Time(std::uint64_t value) { return {Kind::kTime, value}; }
  static constexpr Value Signed(std::int64_t value) {
    Value result(Kind::kSigned, 0);
    result.signed_ = value;
    return result;
  }
  static constexpr Value Real(double value) {
    Value result(Kind::kReal, 0);
    result.real_ = value;
    return result;
  }

  static constexpr Value Duration(std::int64_t nanoseconds) {
    Value result(Kind::kDuration, 0);
    result.signed_ = nanoseconds;
    return result;
  }
  /// An ASCII text of the program's own.
  static constexpr Value Text(std::string_view text) {
    Value result(Kind::kText, 0);
    result.text_ = text.data();
    result.length_ = static_cast<std::uint32_t>(text.size());
    return result;
  }
  static constexpr Value Name(std::span<const std::uint8_t> bytes) {
    Value result(Kind::kName, 0);
    result.bytes_ = bytes.data();
    result.length_ = static_cast<std::uint32_t>(bytes.size());
    return result;
  }

  constexpr Kind kind() const { return kind_; }
  constexpr std::uint64_t as_unsigned() const { return unsigned_; }
  constexpr std::int64_t as_signed() const { return signed_; }
  constexpr double as_real() const { return real_; }
  constexpr std::string_view as_text() const { return {text_, length_}; }
  constexpr std::span<const std::uint8_t> as_name() const { return {bytes_, length_}; }

 private:
  constexpr Value(Kind kind, std::uint64_t value) : kind_(kind), unsigned_(value) {}

  Kind kind_;
  std::uint32_t length_ = 0;  // of a text or a name
  union {
    std::uint64_t unsigned_;
    std::int64_t signed_;
    double real_;
    const char* text_;
    const std::uint8_t* bytes_;
  };
};

}  // namespace orvo

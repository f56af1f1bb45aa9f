#pragma once

#include <cstdint>

namespace orvo {

/// A value of a report's column before a writer words it: nothing, a count, a signed number, a real number, or a time
/// (nanoseconds since 1601-01-01 UTC, 0 for never).
class Value {
 public:
  enum class Kind : std::uint8_t { kNothing, kUnsigned, kSigned, kReal, kTime };

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

  constexpr Kind kind() const { return kind_; }
  constexpr std::uint64_t as_unsigned() const { return unsigned_; }
  constexpr std::int64_t as_signed() const { return signed_; }
  constexpr double as_real() const { return real_; }

 private:
  constexpr Value(Kind kind, std::uint64_t value) : kind_(kind), unsigned_(value) {}

  Kind kind_;
  union {
    std::uint64_t unsigned_;
    std::int64_t signed_;
    double real_;
  };
};

}  // namespace orvo

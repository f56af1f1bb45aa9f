#include "platform/fixed_text.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace orvo {
namespace {

constexpr std::array<std::uint32_t, 7> kPowers{1, 10, 100, 1'000, 10'000, 100'000, 1'000'000};
constexpr double kMost = 1e12;
/// With smaller ones the product below would have to be shifted by more bits than it has.
constexpr double kLeast = 1e-12;

/// A number from kLeast to below kMost in units of its last decimal: the nearest one, and of two that are equally near
/// the even one. A double is a whole number times a power of two, so that nothing is lost on the way.
std::uint64_t InUnits(double value, std::uint32_t units) {
  constexpr int kMantissaBits = 52;
  constexpr int kExponentBias = 1023;
  constexpr std::uint64_t kImplicitBit = std::uint64_t{1} << kMantissaBits;
  __extension__ using Wide = unsigned __int128;
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const int exponent = static_cast<int>(bits >> kMantissaBits) - kExponentBias;
  const Wide product = Wide{(bits & (kImplicitBit - 1)) | kImplicitBit} * units;
  const int shift = kMantissaBits - exponent;
  const auto whole = static_cast<std::uint64_t>(product >> shift);
  const Wide rest = product - (Wide{whole} << shift);
  const Wide half = Wide{1} << (shift - 1);
  return whole + (rest > half || (rest == half && (whole & 1) != 0) ? 1 : 0);
}

}  // namespace

char* WriteFixed(double value, int decimals, char* begin, char* end) {
  const double size = std::fabs(value);
  if (size >= kMost || (size < kLeast && size != 0)) {
    return std::to_chars(begin, end, value, std::chars_format::fixed, decimals).ptr;
  }
  const std::uint32_t units = kPowers[static_cast<std::size_t>(decimals)];
  const std::uint64_t rounded = size == 0 ? 0 : InUnits(size, units);
  if (std::signbit(value)) *begin++ = '-';
  begin = std::to_chars(begin, end, rounded / units).ptr;
  if (decimals == 0) return begin;
  *begin = '.';
  std::uint64_t rest = rounded % units;
  for (char* digit = begin + decimals; digit != begin; --digit, rest /= 10) *digit = static_cast<char>('0' + rest % 10);
  return begin + decimals + 1;
}

}  // namespace orvo

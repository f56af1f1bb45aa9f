#include "capture/source/time_scale.h"

#include <algorithm>
#include <array>
#include <limits>

#include "platform/clock.h"

namespace orvo {
namespace {

__extension__ using Wide = __int128;

constexpr std::uint64_t kLast = std::numeric_limits<std::uint64_t>::max();
constexpr std::int64_t kEpochSeconds = static_cast<std::int64_t>(kUnixEpoch / kNanosecondsPerSecond);
/// Years that no stamp of ours lies beyond, so that sums stay in range: offsets up to this leave the simple way open.
constexpr std::int64_t kSimpleOffset = 1'000'000'000;

constexpr unsigned kBinary = 0x80;
constexpr unsigned kExponent = 0x7F;
constexpr unsigned kNanosecondDigits = 9;

/// The powers of ten that 64 bits hold.
constexpr auto kPowers = [] {
  std::array<std::uint64_t, 20> powers{1};
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}();

/// value / 10^digits, rounded down.
std::uint64_t Scaled(std::uint64_t value, unsigned digits) {
  return digits < kPowers.size() ? value / kPowers[digits] : 0;
}

struct Moment {
  std::uint64_t seconds;
  std::uint64_t nanoseconds;
};

Moment FromDecimal(std::uint64_t stamp, unsigned digits) {
  const std::uint64_t seconds = Scaled(stamp, digits);
  const std::uint64_t rest = digits < kPowers.size() ? stamp % kPowers[digits] : stamp;
  return {seconds, digits <= kNanosecondDigits ? rest * kPowers[kNanosecondDigits - digits]
                                               : Scaled(rest, digits - kNanosecondDigits)};
}

Moment FromBinary(std::uint64_t stamp, unsigned bits) {
  const std::uint64_t seconds = bits < 64 ? stamp >> bits : 0;
  const std::uint64_t rest = bits < 64 ? stamp & ((std::uint64_t{1} << bits) - 1) : stamp;
  return {seconds, static_cast<std::uint64_t>((Wide{rest} * kNanosecondsPerSecond) >> bits)};
}

}  // namespace

TimeScale::TimeScale(std::uint8_t resolution, std::int64_t offset) : resolution_(resolution), offset_(offset) {
  if (resolution > kNanosecondDigits || offset < -kSimpleOffset || offset > kSimpleOffset) return;
  simple_factor_ = kPowers[kNanosecondDigits - resolution];
  simple_base_ = static_cast<std::uint64_t>(kEpochSeconds + offset) * kNanosecondsPerSecond;
  simple_end_ = (kLast - simple_base_) / simple_factor_;
}

std::uint64_t TimeScale::AnyTimeOf(std::uint64_t stamp) const {
  const unsigned exponent = resolution_ & kExponent;
  const Moment moment = (resolution_ & kBinary) != 0 ? FromBinary(stamp, exponent) : FromDecimal(stamp, exponent);
  const Wide time = (Wide{moment.seconds} + offset_ + kEpochSeconds) * kNanosecondsPerSecond + moment.nanoseconds;
  return static_cast<std::uint64_t>(std::clamp<Wide>(time, 1, kLast));
}

}  // namespace orvo

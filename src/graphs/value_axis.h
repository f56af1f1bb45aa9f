#pragma once

#include <cstdint>
#include <string>

namespace orvo {

/// The scale of a value axis: equal intervals of a round step, that cover a range with zero in it.
struct ValueAxis {
  double minimum = 0;
  double maximum = 1;
  std::uint32_t intervals = 1;
  /// Power of ten that the step is a whole multiple of.
  int exponent = 0;
  double step = 1;

  /// Chooses the step: the first of 1, 2, 5, 10 and 25 times a power of ten that gives 6 to 10 intervals. A range that
  /// none suits becomes a single interval. `minimum` is never above zero, `maximum` never below it; both are finite.
  static ValueAxis For(double minimum, double maximum);

  /// The value of a tick, 0 at the bottom to `intervals` at the top.
  double Tick(std::uint32_t tick) const;
  /// The tick in the user's locale, with as many decimals as the step has.
  std::u16string Label(std::uint32_t tick) const;
  /// Where a value lies between the bottom (0) and the top (1); values beyond the top are at the top.
  double Place(double value) const;
  /// The tick at zero, from which ticks are counted when not all are labelled.
  std::uint32_t ZeroTick() const;
};

}  // namespace orvo

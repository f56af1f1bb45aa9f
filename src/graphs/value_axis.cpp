#include "graphs/value_axis.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/error.h"
#include "util/locale_number.h"

namespace orvo {
namespace {

constexpr std::array<double, 5> kMultipliers{1, 2, 5, 10, 25};
constexpr int kMostPasses = 10;
constexpr double kFewestIntervals = 6;
constexpr double kMostIntervals = 10;

/// m times ten to the e, rounded once where that is possible, so that 5 tenths are 0.5.
double StepOf(double multiplier, int exponent) {
  return exponent < 0 ? multiplier / std::pow(10.0, -exponent) : multiplier * std::pow(10.0, exponent);
}

double IntervalsFor(double minimum, double maximum, double step) {
  const bool straddles_zero = minimum < 0 && maximum > 0;
  if (straddles_zero) return std::ceil(-minimum / step) + std::ceil(maximum / step);
  return std::ceil((maximum - minimum) / step);
}

}  // namespace

ValueAxis ValueAxis::For(double minimum, double maximum) {
  if (maximum == minimum) maximum = minimum + 1;
  const double range = maximum - minimum;
  int exponent = static_cast<int>(std::log10(range));
  for (int pass = 0; pass < kMostPasses; ++pass) {
    double intervals = 0;
    for (double multiplier : kMultipliers) {
      const double step = StepOf(multiplier, exponent);
      intervals = IntervalsFor(minimum, maximum, step);
      if (!(intervals >= kFewestIntervals && intervals <= kMostIntervals)) continue;
      ValueAxis axis;
      axis.minimum = minimum < 0 ? -std::ceil(-minimum / step) * step : 0;
      axis.maximum = axis.minimum + intervals * step;
      axis.intervals = static_cast<std::uint32_t>(intervals);
      axis.exponent = exponent;
      axis.step = step;
      return axis;
    }
    exponent += exponent >= 0 && intervals >= kFewestIntervals ? 1 : -1;
  }
  return {.minimum = minimum, .maximum = maximum, .intervals = 1, .exponent = exponent, .step = range};
}

double ValueAxis::Tick(std::uint32_t tick) const {
  if (intervals == 1) return tick == 0 ? minimum : maximum;
  // Counted from zero, so that the tick there is zero and not what rounding leaves of it.
  return (std::round(minimum / step) + tick) * step;
}

std::u16string ValueAxis::Label(std::uint32_t tick) const {
  std::u16string text;
  Check(FormatNumber(Tick(tick), std::max(-exponent, 0), &text));
  // A single digit is printed behind a blank.
  text.erase(0, std::min(text.find_first_not_of(u' '), text.size()));
  return text;
}

double ValueAxis::Place(double value) const {
  return std::min((value - minimum) / (maximum - minimum), 1.0);
}

std::uint32_t ValueAxis::ZeroTick() const {
  return intervals == 1 ? 0 : static_cast<std::uint32_t>(std::round(-minimum / step));
}

}  // namespace orvo

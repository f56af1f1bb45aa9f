#include "capture/decode/radio_rates.h"

#include <iterator>

namespace orvo {
namespace {

/// Coded bits per subcarrier, and the share of them that is data.
struct Modulation {
  std::uint32_t bits;
  std::uint32_t data;
  std::uint32_t of;
};

constexpr Modulation kModulations[] = {{1, 1, 2}, {2, 1, 2}, {2, 3, 4}, {4, 1, 2}, {4, 3, 4},  {6, 2, 3},
                                       {6, 3, 4}, {6, 5, 6}, {8, 3, 4}, {8, 5, 6}, {10, 3, 4}, {10, 5, 6}};
constexpr std::uint32_t kHtModulations = 8;
constexpr std::uint32_t kVhtModulations = 10;
constexpr std::uint32_t kMostStreams = 8;

constexpr std::uint32_t kShortGuard = 400;
constexpr std::uint32_t kLongGuard = 800;
constexpr std::uint32_t kSymbol = 3200;  // ns, without the guard interval
constexpr std::uint32_t kHeSymbol = 12800;

/// Data bits of one symbol, divided by the time that it takes with its guard interval.
std::uint32_t Rate(const Modulation& modulation, std::uint32_t streams, std::uint32_t tones, std::uint32_t symbol) {
  constexpr std::uint64_t kUnitsPerBitAndNanosecond = 2000;
  const std::uint64_t bits = std::uint64_t{tones} * streams * modulation.bits * modulation.data;
  const std::uint64_t divisor = std::uint64_t{modulation.of} * symbol;
  return static_cast<std::uint32_t>((bits * kUnitsPerBitAndNanosecond + divisor / 2) / divisor);
}

std::uint32_t TonesOf(std::uint32_t width) {
  switch (width) {
    case 20: return 52;
    case 40: return 108;
    case 80: return 234;
    case 160: return 468;
    default: return 0;
  }
}

}  // namespace

std::uint32_t HtRate(std::uint32_t index, bool is_40_mhz, bool short_guard) {
  constexpr std::uint32_t kDuplicate = 32;  // one stream, the same in both halves of 40 MHz
  constexpr std::uint32_t kDuplicateTones = 48;
  const std::uint32_t symbol = kSymbol + (short_guard ? kShortGuard : kLongGuard);
  if (index == kDuplicate) return is_40_mhz ? Rate(kModulations[0], 1, kDuplicateTones, symbol) : 0;
  if (index > kDuplicate) return 0;
  return Rate(kModulations[index % kHtModulations], index / kHtModulations + 1, TonesOf(is_40_mhz ? 40 : 20), symbol);
}

std::uint32_t VhtRate(std::uint32_t index, std::uint32_t streams, std::uint32_t width, bool short_guard) {
  if (index >= kVhtModulations || streams == 0 || streams > kMostStreams) return 0;
  return Rate(kModulations[index], streams, TonesOf(width), kSymbol + (short_guard ? kShortGuard : kLongGuard));
}

std::uint32_t HeRate(std::uint32_t index, std::uint32_t streams, std::uint32_t tones, std::uint32_t guard, bool dual) {
  if (index >= std::size(kModulations) || streams == 0 || streams > kMostStreams) return 0;
  return Rate(kModulations[index], streams, dual ? tones / 2 : tones, kHeSymbol + guard);
}

}  // namespace orvo

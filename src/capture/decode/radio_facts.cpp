#include "capture/decode/radio_facts.h"

#include <algorithm>

namespace orvo {
namespace {

constexpr int kLowestDbm = kNoDbm + 1;
constexpr int kHighestDbm = 127;

constexpr std::uint32_t kChannel14 = 2484;
constexpr std::uint32_t kSpacing = 5;

/// Channels at `base` + 5 * number, for centres from `first` to `last`.
struct ChannelPlan {
  std::uint32_t base;
  std::uint32_t first;
  std::uint32_t last;
};

constexpr ChannelPlan kPlan24{2407, 2412, 2472};
constexpr ChannelPlan kPlan49{4000, 4910, 4999};
constexpr ChannelPlan kPlan5{5000, 5000, 5925};
constexpr ChannelPlan kPlan6{5950, 5951, 7125};
constexpr ChannelPlan kPlans[] = {kPlan24, kPlan49, kPlan5, kPlan6};

constexpr bool IsIn(const ChannelPlan& plan, std::uint32_t megahertz) {
  return megahertz >= plan.first && megahertz <= plan.last;
}

constexpr std::uint32_t kFirstChannel5 = 16;
constexpr std::uint32_t kLastChannel5 = 181;
constexpr std::uint32_t kLastChannel49 = 199;

enum Band : std::uint32_t {
  kBandUnknown = 0,
  kBandB = 2,
  kBandA = 3,
  kBandBg = 4,
  kBandN = 6,
  kBandATurbo = 7,
  kBandGTurbo = 8,
  kBandStaticTurbo = 9,
  kBand5MHz = 101,
  kBand10MHz = 102,
  kBand20MHz = 104,
  kBandN20 = 300,
  kBandN40 = 301,
  kBandN40Lower = 302,
  kBandN40Upper = 303,
};

std::uint32_t HtBand(std::uint32_t megahertz, std::uint32_t modes) {
  // The label of 20 MHz goes by channel numbers, which 6 GHz shares with 2.4 GHz.
  if ((modes & kRadioWide) == 0) return IsIn(kPlan6, megahertz) ? kBandN : kBandN20;
  const bool above = (modes & kRadioWideAbove) != 0;
  const bool below = (modes & kRadioWideBelow) != 0;
  if (above == below) return kBandN40;
  return above ? kBandN40Lower : kBandN40Upper;
}

}  // namespace

RadioLevel LevelFromDbm(int dbm) {
  return {static_cast<std::int8_t>(std::clamp(2 * (dbm + 100), 0, 100)),
          static_cast<std::int8_t>(std::clamp(dbm, kLowestDbm, kHighestDbm))};
}

RadioLevel LevelFromPercent(int percent) {
  return {static_cast<std::int8_t>(std::clamp(percent, 0, 100)), kNoDbm};
}

std::uint16_t ChannelOfFrequency(std::uint32_t megahertz) {
  if (megahertz == kChannel14) return 14;
  constexpr std::uint32_t kChannel2Of6GHz = 5935;
  if (megahertz == kChannel2Of6GHz) return 2;
  for (const ChannelPlan& plan : kPlans) {
    if (IsIn(plan, megahertz)) return static_cast<std::uint16_t>((megahertz - plan.base) / kSpacing);
  }
  return 0;
}

std::uint16_t FrequencyOfChannel(std::uint32_t number) {
  if (number == 14) return kChannel14;
  std::uint32_t base = 0;
  if (number >= 1 && number < 14) {
    base = kPlan24.base;
  } else if (number >= kFirstChannel5 && number <= kLastChannel5) {
    base = kPlan5.base;
  } else if (number > kLastChannel5 && number <= kLastChannel49) {
    base = kPlan49.base;
  }
  return base == 0 ? std::uint16_t{0} : static_cast<std::uint16_t>(base + kSpacing * number);
}

void RadioFacts::SetFrequency(std::uint32_t megahertz) {
  channel = ChannelOfFrequency(megahertz);
  frequency = megahertz <= UINT16_MAX ? static_cast<std::uint16_t>(megahertz) : std::uint16_t{0};
}

void RadioFacts::SetChannel(std::uint32_t number) {
  frequency = FrequencyOfChannel(number);
  channel = number <= UINT16_MAX ? static_cast<std::uint16_t>(number) : std::uint16_t{0};
}

void RadioFacts::SetPlainRate(std::uint32_t rate_in_500_kbit) {
  constexpr std::uint32_t kCckRates[] = {2, 4, 11, 22};
  rate = rate_in_500_kbit;
  if (rate == 0) return;
  modes |= std::ranges::find(kCckRates, rate) != std::ranges::end(kCckRates) ? kRadioCck : kRadioOfdm;
}

std::uint32_t BandCode(std::uint32_t megahertz, std::uint32_t modes) {
  if (megahertz == 0) return kBandUnknown;
  if (IsIn(kPlan49, megahertz)) {
    if ((modes & kRadioQuarterWidth) != 0) return kBand5MHz;
    return (modes & kRadioHalfWidth) != 0 ? kBand10MHz : kBand20MHz;
  }
  const bool is_24 = IsIn(kPlan24, megahertz) || megahertz == kChannel14;
  if ((modes & (kRadioHt | kRadioWide)) != 0) return HtBand(megahertz, modes);
  if ((modes & kRadioStaticTurbo) != 0) return is_24 ? kBandStaticTurbo : kBandATurbo;
  if ((modes & kRadioTurbo) != 0) return is_24 ? kBandGTurbo : kBandATurbo;
  if (!is_24) return kBandA;
  return modes == kRadioCck ? kBandB : kBandBg;
}

}  // namespace orvo

#include "capture/analysis/voice_quality.h"

#include <algorithm>
#include <cmath>

namespace orvo {
namespace {

// Default values of ITU-T G.107 table 2, by the recommendation's names.
constexpr double kSlr = 8;            // send loudness rating, dB
constexpr double kRlr = 2;            // receive loudness rating, dB
constexpr double kStmr = 15;          // sidetone masking rating, dB
constexpr double kDs = 3;             // D-value of the telephone, send side
constexpr double kDr = 3;             // D-value of the telephone, receive side
constexpr double kTelr = 65;          // talker echo loudness rating, dB
constexpr double kWepl = 110;         // weighted echo path loss, dB
constexpr double kQdu = 1;            // quantization distortion units
constexpr double kNc = -70;           // circuit noise, dBm0p
constexpr double kNfor = -64;         // noise floor at the receive side, dBmp
constexpr double kPs = 35;            // room noise at the send side, dB(A)
constexpr double kPr = 35;            // room noise at the receive side, dB(A)
constexpr double kAdvantage = 0;      // A
constexpr double kSensitivity = 1;    // sT, delay sensitivity
constexpr double kPerceptible = 100;  // mT, least delay that is perceived, ms

double Square(double value) {
  return value * value;
}
double FromDecibels(double decibels) {
  return std::pow(10, decibels / 10);
}

/// No, all noises together (clause 7.2, equations 7-3 to 7-7).
double Noise() {
  const double olr = kSlr + kRlr;
  const double lstr = kStmr + kDr;
  const double nos = kPs - kSlr - kDs - 100 + 0.004 * Square(kPs - olr - kDs - 14);
  const double pre = kPr + 10 * std::log10(1 + FromDecibels(10 - lstr));
  const double nor = kRlr - 121 + pre + 0.008 * Square(pre - 35);
  const double nfo = kNfor + kRlr;
  return 10 * std::log10(FromDecibels(kNc) + FromDecibels(nos) + FromDecibels(nor) + FromDecibels(nfo));
}

/// Ro, the basic signal-to-noise ratio (clause 7.2, equation 7-2).
double SignalToNoise() {
  return 15 - 1.5 * (kSlr + Noise());
}

/// Is, what disturbs at the same time as the voice (clause 7.3), at an echo path without delay.
double SimultaneousImpairment() {
  const double xolr = kSlr + kRlr + 0.2 * (64 + Noise() - kRlr);
  const double loudness = 20 * (std::pow(1 + std::pow(xolr / 8, 8), 1.0 / 8) - xolr / 8);
  const double stmro = -10 * std::log10(FromDecibels(-kStmr) + FromDecibels(-kTelr));
  const double sidetone = 12 * std::pow(1 + std::pow((stmro - 13) / 6, 8), 1.0 / 8) -
                          28 * std::pow(1 + std::pow((stmro + 1) / 19.4, 35), 1.0 / 35) -
                          13 * std::pow(1 + std::pow((stmro - 3) / 33, 13), 1.0 / 13) + 29;
  const double q = 37 - 15 * std::log10(kQdu);
  const double g = 1.07 + 0.258 * q + 0.0602 * Square(q);
  const double y = (SignalToNoise() - 100) / 15 + 46 / 8.4 - g / 9;
  const double z = 46.0 / 30 - g / 40;
  const double quantizing = 15 * std::log10(1 + std::pow(10, y) + std::pow(10, z));
  return loudness + sidetone + quantizing;
}

/// Idte, talker echo (clause 7.4, equations 7-19 to 7-24), for a delay of the echo path in one direction.
double TalkerEcho(double delay) {
  const double roe = -1.5 * (Noise() - kRlr);
  const double terv =
      kTelr - 40 * std::log10((1 + delay / 10) / (1 + delay / 150)) + 6 * std::exp(-0.3 * Square(delay));
  const double re = 80 + 2.5 * (terv - 14);
  return ((roe - re) / 2 + std::sqrt(Square(roe - re) / 4 + 100) - 1) * (1 - std::exp(-delay));
}

/// Idle, listener echo (clause 7.4, equations 7-25 and 7-26), for the delay of a round trip.
double ListenerEcho(double round_trip) {
  const double rle = 10.5 * (kWepl + 7) * std::pow(round_trip + 1, -0.25);
  const double ro = SignalToNoise();
  return (ro - rle) / 2 + std::sqrt(Square(ro - rle) / 4 + 169);
}

/// Idd, delay itself (clause 7.4, equations 7-27 and 7-28).
double LongDelay(double delay) {
  if (delay <= kPerceptible) return 0;
  const double x = std::log10(delay / kPerceptible) / std::log10(2);
  const double power = 6 * kSensitivity;
  return 25 * (std::pow(1 + std::pow(x, power), 1 / power) - 3 * std::pow(1 + std::pow(x / 3, power), 1 / power) + 2);
}

/// Id, everything that delay does (clause 7.4, equation 7-18).
double DelayImpairment(double delay) {
  return TalkerEcho(delay) + ListenerEcho(2 * delay) + LongDelay(delay);
}

/// Ie,eff, codec and packet loss (clause 7.5, equation 7-29); losses count in percent.
double EquipmentImpairment(const VoiceConditions& conditions, double burst_ratio) {
  const double percent = 100 * conditions.loss;
  if (percent <= 0) return conditions.impairment;
  return conditions.impairment +
         (95 - conditions.impairment) * percent / (percent / burst_ratio + conditions.loss_robustness);
}

double Bounded(double rating) {
  return std::clamp(rating, 0.0, 100.0);
}

}  // namespace

VoiceRatings RateVoice(const VoiceConditions& conditions) {
  static const double kBest = SignalToNoise() - SimultaneousImpairment() + kAdvantage;
  // Without delay there is still the listener's echo of a path of no length, as in the recommendation's own default.
  static const double kNoDelay = DelayImpairment(0);
  const double delayed = DelayImpairment(std::max(conditions.delay, 0.0));
  const double bursty = EquipmentImpairment(conditions, std::max(conditions.burst_ratio, 1.0));
  VoiceRatings ratings;
  ratings.listening = Bounded(kBest - kNoDelay - bursty);
  ratings.conversational = Bounded(kBest - delayed - bursty);
  ratings.g107 = Bounded(kBest - delayed - EquipmentImpairment(conditions, 1));
  ratings.nominal = Bounded(kBest - kNoDelay - conditions.impairment);
  return ratings;
}

double MeanOpinionScore(double rating) {
  if (rating <= 0) return 1;
  if (rating >= 100) return 4.5;
  // Equation B-4; below a rating of about 6.5 it dips under 1.
  return std::max(1.0, 1 + 0.035 * rating + rating * (rating - 60) * (100 - rating) * 7e-6);
}

double RawQualityScore(double opinion_score) {
  // The inverse of P.862.1 (its equation 2), which has no answer at the ends of the scale.
  const double score = std::clamp(opinion_score, 1.017, 4.549);
  return (4.6607 - std::log((4.999 - score) / (score - 0.999))) / 1.4945;
}

}  // namespace orvo

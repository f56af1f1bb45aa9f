#include "capture/analysis/voice_quality.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

namespace orvo {
namespace {

TEST(VoiceQuality, GivesTheDefaultOfTheRecommendation) {
  VoiceRatings ratings = RateVoice({});
  // ITU-T G.107: all parameters at their defaults give R = 93.2, which is a score of 4.41.
  EXPECT_NEAR(ratings.g107, 93.2, 0.05);
  EXPECT_NEAR(MeanOpinionScore(ratings.g107), 4.41, 0.005);
  EXPECT_DOUBLE_EQ(ratings.listening, ratings.g107);
  EXPECT_DOUBLE_EQ(ratings.conversational, ratings.g107);
  EXPECT_DOUBLE_EQ(ratings.nominal, ratings.g107);
}

TEST(VoiceQuality, MapsRatingsToScores) {
  // ITU-T G.107 annex B, table B.1, and the ends of equation B-4.
  const std::pair<double, double> cases[] = {{90, 4.34}, {80, 4.03}, {70, 3.60}, {60, 3.10}, {50, 2.58},
                                             {-5, 1},    {0, 1},     {3, 1},     {100, 4.5}, {120, 4.5}};
  for (const auto& [rating, score] : cases) EXPECT_NEAR(MeanOpinionScore(rating), score, 0.01) << rating;
}

TEST(VoiceQuality, LossesCostWhatTheCodecCannotHide) {
  struct Case {
    const char* name;
    VoiceConditions conditions;
    double impairment;  ///< of equation 7-29, by hand
  };
  const Case cases[] = {
      {"G.711, 1 %", {.loss = 0.01}, 95.0 * 1 / (1 + 4.3)},
      {"G.729, none", {.impairment = 11, .loss_robustness = 19}, 11},
      {"G.729, 2 %", {.impairment = 11, .loss_robustness = 19, .loss = 0.02}, 11 + 84.0 * 2 / 21},
      {"G.729, 2 % in bursts",
       {.impairment = 11, .loss_robustness = 19, .loss = 0.02, .burst_ratio = 2},
       11 + 84.0 * 2 / 20},
  };
  double best = RateVoice({}).g107;
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    VoiceRatings ratings = RateVoice(test.conditions);
    EXPECT_NEAR(ratings.listening, best - test.impairment, 1e-9);
    EXPECT_NEAR(ratings.nominal, best - test.conditions.impairment, 1e-9);
  }
  VoiceRatings bursty = RateVoice(cases[3].conditions);
  EXPECT_NEAR(bursty.g107, RateVoice(cases[2].conditions).g107, 1e-9) << "chance, whatever the bursts were";
  EXPECT_EQ(RateVoice({.impairment = 50, .loss = 1, .delay = 1000}).g107, 0);
}

TEST(VoiceQuality, DelayCostsConversationAlone) {
  // Id by equations 7-18 to 7-28 with all other parameters at their defaults.
  const std::pair<double, double> cases[] = {{50, 91.76}, {100, 90.66}, {150, 89.54}, {200, 85.80}, {400, 62.25}};
  for (const auto& [delay, rating] : cases) {
    VoiceRatings ratings = RateVoice({.delay = delay});
    EXPECT_NEAR(ratings.conversational, rating, 0.01) << delay;
    EXPECT_NEAR(ratings.g107, rating, 0.01) << delay;
    EXPECT_NEAR(ratings.listening, 93.2, 0.05) << delay;
  }
}

TEST(VoiceQuality, InvertsTheMappingOfRawScores) {
  // ITU-T P.862.1: MOS-LQO = 0.999 + 4 / (1 + exp(-1.4945 x + 4.6607)).
  for (double raw : {0.5, 2.0, 3.0, 4.0, 4.4}) {
    double score = 0.999 + 4 / (1 + std::exp(-1.4945 * raw + 4.6607));
    EXPECT_NEAR(RawQualityScore(score), raw, 1e-9);
  }
  for (double beyond : {1.0, 4.999, 7.0}) EXPECT_TRUE(std::isfinite(RawQualityScore(beyond)));
}

}  // namespace
}  // namespace orvo

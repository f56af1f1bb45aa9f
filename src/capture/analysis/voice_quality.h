#pragma once

namespace orvo {

/// What the quality of a voice stream is judged by.
struct VoiceConditions {
  double impairment = 0;         ///< Ie of the codec (ITU-T G.113)
  double loss_robustness = 4.3;  ///< Bpl of the codec (ITU-T G.113)
  double loss = 0;               ///< share of packets lost, 0 to 1
  double burst_ratio = 1;        ///< BurstR (ITU-T G.107 clause 7.5), at least 1
  double delay = 0;              ///< one way, in milliseconds
};

/// Transmission ratings by the E-model of ITU-T G.107, 0 (useless) to 93.2 (a perfect call of G.711). Whatever is not
/// among the conditions has the default of G.107 table 2.
struct VoiceRatings {
  double listening = 0;       ///< without what delay does to a conversation, with losses as bursty as they were
  double conversational = 0;  ///< with delay, and with losses as bursty as they were
  double g107 = 0;            ///< with delay, and with losses spread by chance (BurstR 1)
  double nominal = 0;         ///< the most that the codec can give: no losses and no delay
};

VoiceRatings RateVoice(const VoiceConditions& conditions);

/// The mean opinion score of a rating, 1 to 4.5 (ITU-T G.107 annex B).
double MeanOpinionScore(double rating);

/// The raw score that a measurement by ITU-T P.862 gives where listeners give this opinion score: the inverse of the
/// mapping that ITU-T P.862.1 defines, -0.5 to 4.5.
double RawQualityScore(double opinion_score);

}  // namespace orvo

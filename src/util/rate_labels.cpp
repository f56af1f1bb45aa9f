#include "util/rate_labels.h"

#include <algorithm>
#include <iterator>

namespace orvo {
namespace {

constexpr std::string_view kStandard = "802.11";

/// Bands of the standard's own stand under its number; the others by themselves.
struct Band {
  std::uint32_t code;
  std::string_view text;
};

constexpr Band kBands[] = {
    {0, "802.11all"},        {2, "802.11b"},         {3, "802.11a"},          {4, "802.11bg"},
    {6, "802.11n"},          {7, "802.11at"},        {8, "802.11gt"},         {9, "802.11sg"},
    {100, "BPS 1MHz ChBw"},  {101, "BPS 5MHz ChBw"}, {102, "BPS 10MHz ChBw"}, {103, "BPS 15MHz ChBw"},
    {104, "BPS 20MHz ChBw"}, {201, "802.11u1"},      {202, "802.11u2"},       {203, "802.11u3"},
    {204, "802.11u4"},       {205, "802.11u5"},      {206, "802.11u6"},       {207, "802.11u7"},
    {208, "802.11u8"},       {209, "802.11u9"},      {301, "802.11n40"},      {302, "802.11n40l"},
    {303, "802.11n40h"},
};

constexpr std::uint32_t kBand20MHz = 300;

std::string_view Text20MHz(std::int32_t channel) {
  if (channel >= 1 && channel <= 14) return "802.11bgn";
  if (channel >= 30 && channel <= 165) return "802.11an";
  return "802.11n20";
}

}  // namespace

std::string_view BandText(std::uint32_t band, std::int32_t channel) {
  if (band == kBand20MHz) return Text20MHz(channel);
  const auto* found = std::ranges::lower_bound(kBands, band, {}, &Band::code);
  return found != std::end(kBands) && found->code == band ? found->text : kStandard;
}

std::string_view BandLabel(std::uint32_t band, std::int32_t channel) {
  std::string_view text = BandText(band, channel);
  if (text.starts_with(kStandard)) text.remove_prefix(kStandard.size());
  return text;
}

}  // namespace orvo

#include "util/rate_labels.h"

#include <algorithm>
#include <iterator>

namespace orvo {
namespace {

struct Band {
  std::uint32_t code;
  std::string_view label;
};

constexpr Band kBands[] = {
    {0, "all"},
    {2, "b"},
    {3, "a"},
    {4, "bg"},
    {6, "n"},
    {7, "at"},
    {8, "gt"},
    {9, "sg"},
    {100, "BPS 1MHz ChBw"},
    {101, "BPS 5MHz ChBw"},
    {102, "BPS 10MHz ChBw"},
    {103, "BPS 15MHz ChBw"},
    {104, "BPS 20MHz ChBw"},
    {201, "u1"},
    {202, "u2"},
    {203, "u3"},
    {204, "u4"},
    {205, "u5"},
    {206, "u6"},
    {207, "u7"},
    {208, "u8"},
    {209, "u9"},
    {301, "n40"},
    {302, "n40l"},
    {303, "n40h"},
};

constexpr std::uint32_t kBand20MHz = 300;

std::string_view Label20MHz(std::int32_t channel) {
  if (channel >= 1 && channel <= 14) return "bgn";
  if (channel >= 30 && channel <= 165) return "an";
  return "n20";
}

}  // namespace

std::string_view BandLabel(std::uint32_t band, std::int32_t channel) {
  if (band == kBand20MHz) return Label20MHz(channel);
  const auto* found = std::ranges::lower_bound(kBands, band, {}, &Band::code);
  return found != std::end(kBands) && found->code == band ? found->label : std::string_view();
}

}  // namespace orvo

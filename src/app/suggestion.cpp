#include "app/suggestion.h"

#include <fmt/core.h>

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace orvo::app {
namespace {

/// Longer than every word that there is, and short enough for the square of it.
constexpr std::size_t kLongest = 64;
constexpr std::size_t kLettersOfABeginning = 3;
constexpr std::size_t kLettersPerSlip = 3;

std::string Letters(std::string_view word) {
  word.remove_prefix(std::min(word.find_first_not_of('-'), word.size()));
  std::string letters(word);
  for (char& c : letters) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return letters;
}

/// How many letters have to be put in, left out, exchanged or swapped with their neighbour to make one word the other
/// (the restricted form of the distance of Damerau and Levenshtein).
std::size_t Slips(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before;
  std::vector<std::size_t> last(b.size() + 1);
  std::iota(last.begin(), last.end(), 0);
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::vector<std::size_t> row(b.size() + 1, i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) row[j] = std::min(row[j], before[j - 2] + 1);
    }
    before = std::move(last);
    last = std::move(row);
  }
  return last.back();
}

}  // namespace

std::string Suggestion(std::string_view word, std::span<const std::string_view> known) {
  const std::string meant = Letters(word);
  if (meant.empty() || meant.size() > kLongest) return {};
  std::string_view nearest;
  std::size_t fewest = std::max<std::size_t>(1, meant.size() / kLettersPerSlip) + 1;
  for (const std::string_view candidate : known) {
    const std::string letters = Letters(candidate);
    const bool begins_so = meant.size() >= kLettersOfABeginning && letters != meant && letters.starts_with(meant);
    const std::size_t slips = begins_so ? 1 : Slips(meant, letters);
    if (slips >= fewest) continue;
    fewest = slips;
    nearest = candidate;
  }
  return nearest.empty() ? std::string() : fmt::format("; did you mean {}?", nearest);
}

}  // namespace orvo::app

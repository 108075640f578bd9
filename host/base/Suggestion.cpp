#include "host/base/Suggestion.h"

#include <algorithm>
#include <cstddef>

namespace grouptracker {

namespace {

/// The fewest slips that make one word of the other.
std::size_t slipsBetween(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> slips(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        slips[i][j] = i + j;
        continue;
      }
      const std::size_t wrong = a[i - 1] == b[j - 1] ? 0 : 1;
      slips[i][j] =
          std::min({slips[i - 1][j] + 1, slips[i][j - 1] + 1, slips[i - 1][j - 1] + wrong});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        slips[i][j] = std::min(slips[i][j], slips[i - 2][j - 2] + 1);
      }
    }
  }
  return slips[a.size()][b.size()];
}

}  // namespace

std::optional<std::string> suggestionFor(std::string_view word,
                                         const std::vector<std::string>& known) {
  constexpr std::size_t longestWord = 64;  // nobody slips more than this by accident
  if (word.size() > longestWord) {
    return std::nullopt;
  }
  std::optional<std::string> nearest;
  std::size_t fewest = word.size() / 3 + 1;
  for (const std::string& candidate : known) {
    if (const std::size_t slips = slipsBetween(word, candidate); slips < fewest) {
      fewest = slips;
      nearest = candidate;
    }
  }
  return nearest;
}

std::string didYouMean(std::string_view word, const std::vector<std::string>& known) {
  const auto suggestion = suggestionFor(word, known);
  return suggestion ? "; did you mean " + *suggestion + "?" : "";
}

}  // namespace grouptracker

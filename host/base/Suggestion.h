#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace grouptracker {

/// The word that somebody may have meant: the one among `known` that is fewest slips away, where a
/// slip is a letter too many, too few, wrong or exchanged with its neighbour (F. Damerau, "A
/// technique for computer detection and correction of spelling errors", CACM 7(3), 1964). None when
/// the nearest needs more slips than a third of the letters.
std::optional<std::string> suggestionFor(std::string_view word,
                                         const std::vector<std::string>& known);

/// "; did you mean WORD?", or nothing where nothing is near.
std::string didYouMean(std::string_view word, const std::vector<std::string>& known);

}  // namespace grouptracker

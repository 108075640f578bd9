#include "host/evaluation/PartitionScores.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

namespace grouptracker {

namespace {

/// Links that hold some groups and singletons together, and those of them that the other division
/// of the persons keeps.
struct Links {
  int all = 0;
  int kept = 0;
};

/// A person alone is linked to its fake counterpart; that link is kept when the other division has
/// the person alone, too. A group of n needs n - 1 links; each further part that the other division
/// makes of it loses one.
Links linksOf(const std::vector<int>& labels, const std::vector<int>& others) {
  std::map<int, std::set<int>> parts;
  std::map<int, int> sizes;
  std::map<int, int> otherSizes;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    parts[labels[i]].insert(others[i]);
    ++sizes[labels[i]];
    ++otherSizes[others[i]];
  }
  Links links;
  for (const auto& [label, size] : sizes) {
    const std::set<int>& otherLabels = parts[label];
    const int needed = size == 1 ? 1 : size - 1;
    const int lost = size == 1 ? (otherSizes[*otherLabels.begin()] == 1 ? 0 : 1)
                               : static_cast<int>(otherLabels.size()) - 1;
    links.all += needed;
    links.kept += needed - lost;
  }
  return links;
}

std::int64_t pairsOf(std::size_t persons) {
  return persons > 1 ? static_cast<std::int64_t>(persons * (persons - 1) / 2) : 0;
}

std::int64_t pairsIn(const Grouping& groups) {
  std::int64_t pairs = 0;
  for (const PersonGroup& group : groups) {
    pairs += pairsOf(group.size());
  }
  return pairs;
}

std::size_t commonSize(const PersonGroup& a, const PersonGroup& b) {
  PersonGroup common;
  std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(common));
  return common.size();
}

std::int64_t commonPairs(const PartitionPair& partitions) {
  std::int64_t pairs = 0;
  for (const PersonGroup& truth : partitions.truth) {
    for (const PersonGroup& found : partitions.found) {
      pairs += pairsOf(commonSize(truth, found));
    }
  }
  return pairs;
}

}  // namespace

PrecisionRecall PrecisionRecall::of(double foundAndTrue, double found, double trueAndFound,
                                    double truth) {
  PrecisionRecall scores;
  scores.precision = found > 0.0 ? foundAndTrue / found : 1.0;
  scores.recall = truth > 0.0 ? trueAndFound / truth : 1.0;
  const double sum = scores.precision + scores.recall;
  scores.f1 = sum > 0.0 ? 2.0 * scores.precision * scores.recall / sum : 0.0;
  return scores;
}

PrecisionRecall groupMitre(const PartitionPair& partitions) {
  const auto truth = labelsOf(partitions.truth, partitions.persons);
  const auto found = labelsOf(partitions.found, partitions.persons);
  const Links ofTruth = linksOf(truth, found);
  const Links ofFound = linksOf(found, truth);
  return PrecisionRecall::of(ofFound.kept, ofFound.all, ofTruth.kept, ofTruth.all);
}

Counts& Counts::operator+=(const Counts& other) {
  matched += other.matched;
  found += other.found;
  truth += other.truth;
  return *this;
}

Counts pairCounts(const PartitionPair& partitions) {
  return {commonPairs(partitions), pairsIn(partitions.found), pairsIn(partitions.truth)};
}

double adjustedRandIndex(const PartitionPair& partitions) {
  const auto all = static_cast<double>(pairsOf(partitions.persons.size()));
  const auto truth = static_cast<double>(pairsIn(partitions.truth));
  const auto found = static_cast<double>(pairsIn(partitions.found));
  const auto common = static_cast<double>(commonPairs(partitions));
  const double expected = all > 0.0 ? truth * found / all : 0.0;
  const double largest = (truth + found) / 2.0;
  // Both all alone or both all together: the partitions are equal and chance says nothing.
  return largest == expected ? 1.0 : (common - expected) / (largest - expected);
}

double overlap(const PersonGroup& a, const PersonGroup& b) {
  return static_cast<double>(commonSize(a, b)) / static_cast<double>(std::max(a.size(), b.size()));
}

bool reaches(double overlap, double tolerance) {
  constexpr double rounding = 1e-9;
  return overlap >= tolerance - rounding;
}

Counts correctGroups(const PartitionPair& partitions, double tolerance) {
  struct Candidate {
    double overlap;
    std::size_t truth;
    std::size_t found;
  };
  std::vector<Candidate> candidates;
  for (std::size_t t = 0; t < partitions.truth.size(); ++t) {
    for (std::size_t f = 0; f < partitions.found.size(); ++f) {
      const double common = overlap(partitions.truth[t], partitions.found[f]);
      if (reaches(common, tolerance)) {
        candidates.push_back({common, t, f});
      }
    }
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate& a, const Candidate& b) { return a.overlap > b.overlap; });
  std::set<std::size_t> usedTruth;
  std::set<std::size_t> usedFound;
  Counts counts{0, std::ssize(partitions.found), std::ssize(partitions.truth)};
  for (const Candidate& candidate : candidates) {
    if (!usedTruth.contains(candidate.truth) && !usedFound.contains(candidate.found)) {
      usedTruth.insert(candidate.truth);
      usedFound.insert(candidate.found);
      ++counts.matched;
    }
  }
  return counts;
}

}  // namespace grouptracker

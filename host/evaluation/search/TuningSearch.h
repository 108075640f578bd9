#pragma once

#include "host/base/RandomNumbers.h"
#include "host/evaluation/search/TrialLog.h"
#include "host/evaluation/search/TuningSpace.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace grouptracker {

/// How a search goes about.
struct SearchOptions {
  std::size_t trials = 120;
  std::uint64_t seed = 1;
  /// The share of the worst sequence in what is maximised, beside the mean.
  double worstShare = 0.2;
};

/// What a search found. Trials without scores are those that died or were never made.
struct SearchResult {
  Trial middle;  ///< of the good region; the answer
  Trial best;    ///< the single best one, mostly by luck
};

/// Looks for the region of good candidates by the cross-entropy method: every round draws
/// candidates from a normal distribution, which then moves and shrinks towards the better quarter
/// of them; the first round draws from the whole space. The answer is the middle of the last
/// distribution: a narrow peak, which most likely is one for these sequences only, attracts it
/// less than a region that is good all around. The same seed makes the same trials, whoever
/// computes them in whatever order.
class TuningSearch {
 public:
  /// Fills in the scores of some trials.
  using Evaluate = std::function<void(std::vector<Trial>&)>;

  TuningSearch(const TuningSpace& space, SearchOptions options);

  SearchResult run(const Evaluate& evaluate);

  /// What is maximised; a trial that died anywhere is worse than any other.
  double worth(const Trial& trial) const;

 private:
  using Places = std::vector<double>;  ///< of a candidate in the ranges, each from 0 to 1

  std::vector<Places> draw(std::size_t count, bool isFirst);
  void narrow(std::vector<std::size_t> ranking, const std::vector<Places>& drawn, bool isFirst);
  std::vector<std::size_t> ranked(const std::vector<Trial>& trials) const;
  Candidate candidateAt(const Places& places) const;

  const TuningSpace& m_space;
  SearchOptions m_options;
  RandomNumbers m_random;
  Places m_middle;
  Places m_spread;  ///< standard deviations
  std::size_t m_tried = 0;
};

}  // namespace grouptracker

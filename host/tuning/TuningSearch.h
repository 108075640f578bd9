#pragma once

#include "TrialLog.h"
#include "TuningSpace.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

/// How a search goes about.
struct SearchOptions {
  std::size_t trials = 200;
  std::uint64_t seed = 1;
  /// The share of the worst sequence in what is maximised, beside the mean.
  double worstShare = 0.2;
};

/// Looks for the candidate with the best score: random search whose better part is tried at full
/// length (successive halving), then normal steps around the best ones, which shrink when they find
/// nothing better. The same seed makes the same trials, whoever computes them in whatever order.
class TuningSearch {
 public:
  /// Fills in the scores of some trials.
  using Evaluate = std::function<void(std::vector<Trial>&)>;

  TuningSearch(const TuningSpace& space, Candidate base, SearchOptions options)
      : m_space(space), m_base(std::move(base)), m_options(options), m_random(options.seed) {}

  /// Returns the best trial at full length; its scores are empty when all died.
  Trial run(const Evaluate& evaluate);

  /// What is maximised; a trial that died anywhere is worse than any other.
  double worth(const Trial& trial) const;

 private:
  void searchRandomly(const Evaluate& evaluate);
  void refine(const Evaluate& evaluate);
  std::vector<Trial> tryAll(const std::vector<Candidate>& candidates, double part,
                            const Evaluate& evaluate);
  std::vector<Trial> bestOf(std::vector<Trial> trials, std::size_t count) const;
  double uniform();
  Candidate anywhere();
  Candidate near(const Candidate& center, double reach);

  const TuningSpace& m_space;
  Candidate m_base;
  SearchOptions m_options;
  std::mt19937_64 m_random;
  std::size_t m_tried = 0;
  std::vector<Trial> m_best;  ///< at full length, the best first
};

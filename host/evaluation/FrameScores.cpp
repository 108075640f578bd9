#include "host/evaluation/FrameScores.h"

namespace grouptracker {

std::vector<PartitionPair> stepsOf(const GroupedFrames& run, const GroupTruth& truth) {
  std::vector<PartitionPair> steps;
  steps.reserve(run.size());
  for (const FrameGroups& step : run) {
    PartitionPair& pair = steps.emplace_back();
    pair.persons = personsOf(step);
    pair.truth = restrictTo(truth.at(step.frame), pair.persons);
    pair.found = restrictTo(groupingOf(step), pair.persons);
  }
  return steps;
}

FrameScores scoreFrames(const std::vector<PartitionPair>& steps) {
  FrameScores scores;
  int compared = 0;
  for (const PartitionPair& step : steps) {
    if (step.persons.size() < 2) {
      continue;
    }
    ++compared;
    for (std::size_t i = 0; i < FrameScores::tolerances.size(); ++i) {
      scores.correctGroups[i] += correctGroups(step, FrameScores::tolerances[i]);
    }
    scores.pairs += pairCounts(step);
    scores.adjustedRand += adjustedRandIndex(step);
  }
  scores.adjustedRand /= compared > 0 ? compared : 1;
  return scores;
}

}  // namespace grouptracker

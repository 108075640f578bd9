#pragma once

#include "host/evaluation/learning/CalibrationCurve.h"
#include "host/evaluation/learning/LearnedSequence.h"
#include "host/grouping/EvidenceModel.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace grouptracker {

using LearnedSequences = std::vector<LearnedSequence>;

/// The model of all sequences, each of which counts alike. Its weights have five digits behind the
/// point, so that they do not depend on the last bits of the arithmetic.
EvidenceModel learn(const LearnedSequences& sequences, double ridge);

/// How well a model does on one sequence, depending on what it was learned from.
struct CarryOver {
  std::string name;
  std::size_t pairs = 0;         ///< examples
  double together = 0.0;         ///< share of them
  double learnedOnAll = 0.0;     ///< the whole sequence, learned on all sequences
  double secondHalf = 0.0;       ///< the second half, learned on all sequences
  double fromFirstHalves = 0.0;  ///< the second half, learned on the first halves of all
  double withoutSequence = 0.0;  ///< the whole sequence, learned on the others only
};

/// What carries over to people who were not learned from, and whether probabilities can be trusted.
struct LearningReport {
  std::vector<CarryOver> sequences;
  std::vector<NamedCurve> curves;

  std::string table() const;
};

/// `onProgress` is told what is done next.
LearningReport examine(const LearnedSequences& sequences, const EvidenceModel& model, double ridge,
                       const std::function<void(const std::string&)>& onProgress);

}  // namespace grouptracker

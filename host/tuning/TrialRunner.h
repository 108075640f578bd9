#pragma once

#include "GroupTruth.h"
#include "TuningSpace.h"
#include "WindowScores.h"

#include <string>

/// An annotated input to tune on.
struct TunedSequence {
  std::string name;
  std::string input;
  GroupTruth truth;
  std::uint64_t steps = 0;  ///< frames of the whole input
};

/// The numbers that a search can maximise.
enum class TunedScore { windowed, whole, correctGroups, pairs };

/// Runs the first `part` of a sequence with some settings and returns its score. The process's
/// parameters are those of the whole program from then on, and a wrong one ends it: to be called
/// in a process of its own. `parameterFile` is written for the process to read.
double runTrial(const TunedSequence& sequence, const TrialSettings& settings, double part,
                TunedScore score, const std::string& parameterFile);

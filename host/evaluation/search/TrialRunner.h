#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/evaluation/WindowScores.h"
#include "host/evaluation/search/TrialInput.h"
#include "host/evaluation/search/TuningSpace.h"

#include <string>

namespace grouptracker {

/// An annotated input to tune on.
struct TunedSequence {
  std::string name;
  TrialInput input;
  GroupTruth truth;
};

/// The numbers that a search can maximise. `sliding` is `windowed` in the mean over several first
/// steps of the windows: where they are cut is chance, which a search would otherwise learn, too.
enum class TunedScore { sliding, windowed, whole, correctGroups, pairs };

/// Runs a sequence with some settings and returns the score of what the process puts out. The
/// process's parameters are those of the whole program from then on, a wrong one ends it, and the
/// input is used up: to be called in a process of its own. `parameterFile` holds the
/// parameters of the settings.
double runTrial(TunedSequence& sequence, const TrialSettings& settings, TunedScore score,
                const std::string& parameterFile);

}  // namespace grouptracker

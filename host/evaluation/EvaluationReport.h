#pragma once

#include "host/evaluation/Baselines.h"
#include "host/evaluation/EventScores.h"
#include "host/evaluation/FrameScores.h"
#include "host/evaluation/TimeScores.h"
#include "host/evaluation/WindowScores.h"

#include <cstddef>
#include <optional>
#include <string>

namespace grouptracker {

/// What the user can choose about an evaluation.
struct EvaluationOptions {
  WindowOptions window;
  double eventTolerance = 2.0;  ///< seconds
};

/// All scores of one run.
struct EvaluationReport {
  std::size_t steps = 0;      ///< frames of the run
  std::size_t annotated = 0;  ///< of these, about which the truth says something
  std::size_t windows = 0;
  PrecisionRecall windowed;  ///< group MITRE, mean over the windows
  PrecisionRecall whole;     ///< group MITRE of the whole sequence
  FrameScores frames;
  TimeScores time;
  Counts identities;
  Flicker flicker;
  std::optional<EventScores> events;  ///< only for a truth per frame
  std::optional<Baselines> baselines;
};

EvaluationReport evaluate(const GroupedFrames& run, const GroupTruth& truth,
                          const EvaluationOptions& options);

/// A table for people, ending with a line end.
std::string tableOf(const EvaluationReport& report);
/// Two runs side by side, and by how much the first is better or worse: F1s and numbers.
std::string comparisonOf(const EvaluationReport& report, const EvaluationReport& other);
/// The same numbers as one JSON object, ending with a line end.
std::string jsonOf(const EvaluationReport& report);

}  // namespace grouptracker

#pragma once

#include "host/evaluation/Baselines.h"
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
  std::size_t eventTolerance = 10;  ///< time steps
};

/// All scores of one run.
struct EvaluationReport {
  std::size_t steps = 0;
  std::size_t windows = 0;
  PrecisionRecall windowed;  ///< group MITRE, mean over the windows
  PrecisionRecall whole;     ///< group MITRE of the whole sequence
  FrameScores frames;
  TimeScores time;
  std::optional<EventScores> events;  ///< only for a truth per frame
  std::optional<Baselines> baselines;
};

EvaluationReport evaluate(const RunSteps& run, const GroupTruth& truth,
                          const EvaluationOptions& options);

/// A table for people, ending with a line end.
std::string tableOf(const EvaluationReport& report);
/// The same numbers as one JSON object, ending with a line end.
std::string jsonOf(const EvaluationReport& report);

}  // namespace grouptracker

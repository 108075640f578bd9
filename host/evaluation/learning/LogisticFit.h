#pragma once

#include "host/evaluation/learning/PairExamples.h"

#include <cstddef>
#include <limits>
#include <vector>

namespace grouptracker {

/// The examples of one recording before some moment.
struct ExamplePart {
  const PairExamples* examples = nullptr;
  double until = std::numeric_limits<double>::infinity();  ///< seconds
};

/// The weights of a logistic regression: those with which the log-odds, a sum of weights times
/// factors, make what was seen most likely, less `ridge`/2 times the sum of their squares. Each
/// part counts as much as a thousand examples, however many it has. The first weight is the
/// intercept, which the ridge leaves alone. Newton's method with step halving, from zero; the same
/// examples give the same weights.
std::vector<double> fitLogistic(const std::vector<ExamplePart>& parts, std::size_t weights,
                                double ridge);

}  // namespace grouptracker

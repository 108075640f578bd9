#pragma once

#include "host/base/InputError.h"

#include <functional>

namespace grouptracker {

/// What a reader calls for a problem behind which it could go on: the one for a run throws the
/// problem, so that the reader ends there; the one for a check notes it and lets the reader pass
/// over the line.
using ProblemHandler = std::function<void(const InputError&)>;

inline void throwProblem(const InputError& problem) {
  throw problem;
}

}  // namespace grouptracker

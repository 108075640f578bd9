#pragma once

#include "host/commands/InputChoice.h"
#include "host/commands/StepOptions.h"

#include <string>

namespace grouptracker {

/// What the user asks of `grouptracker run`. Texts are empty when the option was not given.
struct RunOptions : InputChoice {
  std::string parameterFile;
  std::string outputFile;
  std::string contextFile;
  std::string pluginFile;
  std::string diagnostics;  ///< a file, or "none"; standard output when empty
  std::string mobileDump;   ///< a file, or "none"; the process's own choice when empty
  StepOptions steps;
  bool skipsFailedFrames = false;
  bool quiet = false;
};

/// The word that turns an output off where a file name could stand.
inline constexpr const char* noOutput = "none";

}  // namespace grouptracker

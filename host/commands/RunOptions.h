#pragma once

#include "host/commands/CommandLine.h"
#include "host/commands/InputChoice.h"
#include "host/commands/StepOptions.h"
#include "host/publish/Publisher.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// What stands for standard output where a file name could stand.
inline constexpr const char* standardOutputName = "-";

/// What the user asks of a run that goes on while people are seen. Texts are empty when the option
/// was not given.
struct LiveOptions {
  std::string publishAddress;
  std::string spoolFile;
  std::size_t spoolMegabytes = 256;
  std::string metricsAddress;
  bool isStrict = false;  ///< ends with a message that is wrong, instead of passing it over
  bool logsJson = false;  ///< the program's own lines on standard error
  BrokerAccess access;    ///< to the broker of the input and to that of the output

  /// What a publisher needs to know.
  PublishOptions publishing() const;
};

/// Adds the options to a command; they outlive the parsing.
void declareLiveOptions(Options& command, LiveOptions& options);

/// What the user asks of `grouptracker run`. Texts are empty when the option was not given.
struct RunOptions : InputChoice {
  std::string parameterFile;
  std::vector<std::string> parameterChanges;  ///< "label=value"
  std::string outputFile;                     ///< for groups
  std::string actorsFile;                     ///< for what the process puts out
  std::string modelFile;                      ///< of the evidence; the built-in model when empty
  std::optional<double> lookAhead;            ///< seconds; the process's delay when not given
  std::string contextFile;
  std::string pluginFile;
  std::string diagnostics;  ///< a file, "-" or "none"; standard output when empty
  std::string mobileDump;   ///< a file, "-" or "none"; the process's own choice when empty
  std::string statusFile;   ///< says whether the outputs are complete
  StepOptions steps;        ///< of the groups
  LiveOptions live;
  bool skipsFailedFrames = false;
  bool quiet = false;
  bool printsParameters = false;  ///< instead of running
  bool printsConfig = false;      ///< instead of running

  /// Whether anybody wants groups, rather than only what the process puts out.
  bool wantsGroups() const {
    return !outputFile.empty() || !live.publishAddress.empty() || steps.wantsAnything();
  }
  /// Whether the run is a service: it takes people from a broker or hands groups to one.
  bool isService() const { return MqttAddress::isOne(input) || !live.publishAddress.empty(); }
  /// Whether an output of its own goes to standard output, with which nothing may be mixed.
  bool takesStandardOutput() const {
    const std::vector<std::string> others = steps.files();
    return outputFile == standardOutputName || actorsFile == standardOutputName ||
           mobileDump == standardOutputName || statusFile == standardOutputName ||
           std::find(others.begin(), others.end(), standardOutputName) != others.end();
  }
};

/// Adds `run` with all its options, which write what they are given to `options`.
Options declareRun(CommandLine& program, RunOptions& options);

/// Adds the options that say which parameters the tracker takes.
void declareParameters(Options& command, std::string& file, std::vector<std::string>& changes);

/// The word that turns an output off where a file name could stand.
inline constexpr const char* noOutput = "none";

/// The groups file of a run whose user named no output: NAME.groups.jsonl in the working folder,
/// where the input is NAME.csv or a folder NAME. The groups of an earlier run are replaced.
/// Anything else that bears the name is an `OutputError`, and standard input, which has no name, an
/// `InputError`.
std::string usualOutput(const std::string& input);

}  // namespace grouptracker

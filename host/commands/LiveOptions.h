#pragma once

#include "host/commands/CommandLine.h"
#include "host/publish/Publisher.h"

#include <cstddef>
#include <string>

namespace grouptracker {

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

}  // namespace grouptracker

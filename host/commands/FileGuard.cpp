#include "host/commands/FileGuard.h"

#include "host/base/FileIdentity.h"
#include "host/base/OutputError.h"
#include "host/input/InputFormats.h"

#include <string>
#include <vector>

namespace grouptracker {

void refuseToDestroy(const Options& command) {
  std::vector<std::string> written = command.filesWritten();
  if (std::erase(written, "-") > 1) {
    throw OutputError("-", "standard output takes one of the outputs only");
  }
  std::vector<std::string> inputs;
  for (const std::string& input : command.filesRead()) {
    inputs.push_back(input);
    const std::vector<std::string> within = filesWithin(input);
    inputs.insert(inputs.end(), within.begin(), within.end());
  }
  refuseOverwriting(written, inputs);
}

}  // namespace grouptracker

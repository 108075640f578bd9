#include "host/commands/check/ParameterCheck.h"

#include <fmt/format.h>

namespace grouptracker {

void checkParameterValues(const ParameterFile& parameters, const std::string& name,
                          CheckReport& report) {
  for (const ParameterEntry& entry : parameters.values) {
    const auto& [label, empty, unit, usual, help] = *entry.row;
    if (!usual.contains(entry.number())) {
      report.warn(label, fmt::format("{}:{}", name, entry.line),
                  fmt::format("{} {:g} is outside of the usual {:g} to {:g}", label, entry.number(),
                              usual.lowest, usual.highest));
    }
  }
  const ParameterEntry* const removal = parameters.find("temporalWinForRemoval:");
  if (removal != nullptr && removal->number() <= parameters.number("temporalWinSize:")) {
    report.warn(
        "windows", fmt::format("{}:{}", name, removal->line),
        "temporalWinForRemoval: is not longer than temporalWinSize:, so people are forgotten "
        "before they are decided on");
  }
}

}  // namespace grouptracker

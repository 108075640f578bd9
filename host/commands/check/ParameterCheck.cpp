#include "host/commands/check/ParameterCheck.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

namespace grouptracker {

namespace {

/// Images are saved when two parameters say so, and only where there is a folder.
void checkSavedImages(const ParameterFile& parameters, const std::string& name,
                      CheckReport& report) {
  const ParameterEntry* const save = parameters.find("saveOutput:");
  const ParameterEntry* const folder = parameters.find("outputFolder:");
  if (save == nullptr || folder == nullptr || save->number() == 0.0) {
    return;
  }
  if (parameters.number("openCVOutput:") == 0.0) {
    report.warn("saveOutput", {name, save->line},
                "saveOutput: saves no images without openCVOutput:");
    return;
  }
  const auto place = std::filesystem::path(folder->text + "1").parent_path();
  std::error_code ignored;
  if (!place.empty() && !std::filesystem::is_directory(place, ignored)) {
    report.warn("outputFolder", {name, folder->line},
                "outputFolder: there is no folder " + place.string());
  }
}

}  // namespace

void checkParameterValues(const ParameterFile& parameters, const std::string& name,
                          CheckReport& report) {
  for (const ParameterEntry& entry : parameters.values) {
    const auto& [label, empty, unit, usual, help] = *entry.row;
    if (!usual.contains(entry.number())) {
      report.warn(label, {name, entry.line},
                  fmt::format("{} {:g} is outside of the usual {:g} to {:g}", label, entry.number(),
                              usual.lowest, usual.highest));
    }
  }
  checkSavedImages(parameters, name, report);
  const ParameterEntry* const removal = parameters.find("temporalWinForRemoval:");
  if (removal != nullptr && removal->number() <= parameters.number("temporalWinSize:")) {
    report.warn(
        "windows", {name, removal->line},
        "temporalWinForRemoval: is not longer than temporalWinSize:, so people are forgotten "
        "before they are decided on");
  }
}

}  // namespace grouptracker

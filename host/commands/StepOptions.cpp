#include "StepOptions.h"

#include <algorithm>
#include <array>

namespace {

struct FileOption {
  const char* name;
  std::string StepOptions::*file;
  const char* help;
};

const std::array<FileOption, 5> fileOptions{{
    {"--events", &StepOptions::eventFile, "what happened to the groups, JSON Lines"},
    {"--graph", &StepOptions::graphFile, "the family tree of the groups, for Graphviz"},
    {"--mot", &StepOptions::motFile, "the groups as boxes in the columns of the MOTChallenge"},
    {"--csv", &StepOptions::csvFile, "the members of the groups: frame, group, person, x, y"},
    {"--sqlite", &StepOptions::databaseFile, "frames, groups, members and events as a database"},
}};

}  // namespace

bool StepOptions::wantsAnything() const {
  return !files().empty();
}

std::vector<std::string> StepOptions::files() const {
  std::vector<std::string> files;
  for (const FileOption& option : fileOptions) {
    if (!(this->*option.file).empty()) {
      files.push_back(this->*option.file);
    }
  }
  return files;
}

void declareStepOptions(CLI::App& command, StepOptions& options) {
  for (const FileOption& option : fileOptions) {
    command.add_option(option.name, options.*option.file, option.help)
        ->type_name("FILE")
        ->group("Results in other forms");
  }
}

#include "host/commands/StepOptions.h"

#include <algorithm>
#include <array>

namespace grouptracker {

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

const char* const heading = "Results in other forms";
constexpr double slowest = 0.1;  // pictures per second
constexpr double fastest = 240.0;

}  // namespace

std::vector<std::string> StepOptions::files() const {
  std::vector<std::string> files;
  for (const FileOption& option : fileOptions) {
    if (!(this->*option.file).empty()) {
      files.push_back(this->*option.file);
    }
  }
  if (!pictures.path.empty()) {
    files.push_back(pictures.path);
  }
  return files;
}

void declareStepOptions(CLI::App& command, StepOptions& options) {
  for (const FileOption& option : fileOptions) {
    command.add_option(option.name, options.*option.file, option.help)
        ->type_name("FILE")
        ->group(heading);
  }
  command
      .add_option("--video", options.pictures.path,
                  "draws every reported frame into a film (.mp4, .mkv, .avi) or a folder of images")
      ->type_name("FILE|FOLDER")
      ->group(heading);
  command
      .add_flag("--top-view", options.pictures.showsTopView,
                "draws the ground from above beside the images; without images it stands alone")
      ->group(heading);
  command
      .add_flag("--show", options.showsWindow,
                "shows the same pictures in a window while running: space pauses, the arrow keys "
                "step, Escape closes it")
      ->group(heading);
  command
      .add_option("--video-rate", options.pictures.rate,
                  "pictures per second of the film, and at most in the window")
      ->check(CLI::Range(slowest, fastest))
      ->capture_default_str()
      ->group(heading);
}

}  // namespace grouptracker

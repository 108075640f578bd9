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

void declareStepOptions(Options& command, StepOptions& options) {
  for (const FileOption& option : fileOptions) {
    command.add(option.name, options.*option.file, option.help).typeName("FILE").heading(heading);
  }
  command
      .add("--video", options.pictures.path,
           "draws every reported frame into a film (.mp4, .mkv, .avi) or a folder of images")
      .typeName("FILE|FOLDER")
      .heading(heading);
  command
      .addFlag("--top-view", options.pictures.showsTopView,
               "draws the ground from above beside the images; without images it stands alone")
      .heading(heading);
  command
      .addFlag("--show", options.showsWindow,
               "shows the same pictures in a window while running: space pauses, the arrow keys "
               "step, Escape closes it")
      .heading(heading);
  command
      .add("--video-rate", options.pictures.rate,
           "pictures per second of the film, and at most in the window")
      .within(slowest, fastest)
      .showDefault()
      .heading(heading);
}

}  // namespace grouptracker

#include "host/commands/StepOptions.h"

#include "host/output/LineExports.h"
#include "host/output/LineageGraph.h"
#include "host/output/PersonsExport.h"
#include "host/output/SqliteExport.h"

#include <array>

namespace grouptracker {

namespace {

template <typename Sink>
std::unique_ptr<StepSink> open(const std::string& file) {
  return std::make_unique<Sink>(file);
}

/// A form in which the steps can be exported: all that the commands know of it.
struct Export {
  const char* option;
  const char* help;
  std::unique_ptr<StepSink> (*open)(const std::string& file);
};

const char* const eventsOption = "--events";

const std::array<Export, 6> exports{{
    {eventsOption, "what happened to the groups, JSON Lines", open<EventWriter>},
    {"--graph", "the family tree of the groups, for Graphviz", open<LineageGraph>},
    {"--mot", "the groups as boxes in the columns of the MOTChallenge", open<MotExport>},
    {"--csv", "the members of the groups: frame, group, person, x, y, time", open<CsvExport>},
    {"--persons", "everybody, also who is alone: frame, time, person, x, y, box, group",
     open<PersonsExport>},
    {"--sqlite", "frames, groups, members and events as a database", open<SqliteExport>},
}};

const char* const formsHeading = "Results in other forms";
constexpr double slowest = 0.1;  // pictures per second
constexpr double fastest = 240.0;

void declareExport(Options& command, const Export& row, StepOptions& options) {
  command.add(row.option, options.exportFiles[row.option], row.help).writes("FILE");
}

void declarePictures(Options& command, PictureOptions& pictures) {
  command
      .add("--video", pictures.path,
           "draws every reported frame into a film (.mp4, .mkv, .avi) or a folder of images")
      .writes("FILE|FOLDER");
  command.addFlag("--top-view", pictures.showsTopView,
                  "draws the ground from above beside the images; without images it stands alone");
}

}  // namespace

std::vector<std::string> StepOptions::files() const {
  std::vector<std::string> files;
  for (const auto& [option, file] : exportFiles) {
    if (!file.empty()) {
      files.push_back(file);
    }
  }
  if (!pictures.path.empty()) {
    files.push_back(pictures.path);
  }
  return files;
}

void StepOptions::open(StepSinks& atOnce, StepSinks& beside) const {
  for (const Export& row : exports) {
    const auto file = exportFiles.find(row.option);
    if (file != exportFiles.end() && !file->second.empty()) {
      // Whoever follows the events of a run wants them as they happen.
      StepSinks& sinks = row.option == eventsOption ? atOnce : beside;
      sinks.push_back(row.open(file->second));
    }
  }
  if (wantsPictures()) {
    beside.push_back(std::make_unique<PictureWriter>(pictures));
  }
}

std::optional<std::string> StepOptions::doubt() const {
  return pictures.showsTopView && !wantsPictures()
             ? std::optional<std::string>("--top-view: nothing is drawn without --video or --show")
             : std::nullopt;
}

void declareStepOptions(Options& command, StepOptions& options) {
  Options forms = command.under(formsHeading);
  for (const Export& row : exports) {
    declareExport(forms, row, options);
  }
  declarePictureOptions(command, options);
}

void declarePictureOptions(Options& command, StepOptions& options) {
  Options forms = command.under(formsHeading);
  declarePictures(forms, options.pictures);
  forms.addFlag("--show", options.showsWindow,
                "shows the same pictures in a window while running: space pauses, the arrow keys "
                "step, Escape closes it");
  forms
      .add("--video-rate", options.pictures.rate,
           "pictures per second of the film, and at most in the window")
      .within(slowest, fastest)
      .showDefault();
}

void declareReplayOptions(Options& command, StepOptions& options) {
  Options forms = command.under(formsHeading);
  for (const Export& row : exports) {
    if (row.option != eventsOption) {
      declareExport(forms, row, options);
    }
  }
  declarePictures(forms, options.pictures);
  forms.add("--video-rate", options.pictures.rate, "pictures per second of the film")
      .within(slowest, fastest)
      .showDefault();
}

}  // namespace grouptracker

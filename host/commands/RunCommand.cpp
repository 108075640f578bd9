#include "host/commands/RunCommand.h"

#include "host/commands/RunSession.h"
#include "host/pictures/PictureExchange.h"
#include "host/pictures/window/RunBesideWindow.h"

#include <fmt/format.h>

#include <memory>
#include <string>

namespace grouptracker {

namespace {

const char* const example = R"(Example:
  grouptracker run scene.jsonl --parameters samples/parameters/walking.txt \
    --calibration camera.yml --output groups.jsonl --diagnostics none --mobile-dump none)";

const std::string skip = "skip";
const std::string stop = "stop";

void declareFiles(CLI::App& command, RunOptions& options) {
  declareInput(command, options);
  command.add_option("--parameters", options.parameterFile, "the tracker's 47 parameters")
      ->required()
      ->type_name("FILE");
  command.add_option("--output", options.outputFile, "groups of every frame, JSON Lines")
      ->required()
      ->type_name("FILE");
  declareCalibration(command, options);
  declareImageSize(command, options);
  command.add_option("--context", options.contextFile, "description of the scene, JSON")
      ->type_name("FILE");
  command
      .add_option("--images", options.imageFolder,
                  "folder with images by sorted name, or a video file, for inputs that name none; "
                  "read only when the parameters ask for output images, or pictures are drawn")
      ->type_name("FOLDER|VIDEO");
  command.add_option("--plugin", options.pluginFile, "the plugin, if not beside the program")
      ->type_name("FILE");
}

void declareTexts(CLI::App& command, RunOptions& options) {
  command
      .add_option("--diagnostics", options.diagnostics,
                  "where the process's lines go instead of standard output; none saves their cost")
      ->type_name("FILE|none");
  command
      .add_option("--mobile-dump", options.mobileDump,
                  "the file to which all remembered mobiles are appended at every frame, instead "
                  "of metas*.txt in the working directory; none saves its cost")
      ->type_name("FILE|none");
  command.add_flag("--quiet", options.quiet, "no progress and no summary");
}

void declareBehaviour(CLI::App& command, RunOptions& options) {
  command
      .add_option_function<std::string>(
          "--frames",
          [&options](const std::string& text) {
            const auto range = FrameRange::parse(text);
            if (!range) {
              throw CLI::ValidationError("--frames", "A:B, A: or :B is expected, with A <= B");
            }
            options.frames = *range;
          },
          "only the frames from A to B, by the input's own numbers")
      ->type_name("A:B");
  command
      .add_option_function<std::string>(
          "--on-error",
          [&options](const std::string& choice) { options.skipsFailedFrames = choice == skip; },
          "what to do when the process fails at a frame (default stop)")
      ->check(CLI::IsMember({skip, stop}))
      ->type_name("skip|stop");
  declareLinks(command, options);
}

void printSummary(const RunSummary& summary) {
  std::string text = fmt::format("{} frames, {} mobiles, {} groups in {:.1f} s", summary.frames,
                                 summary.mobiles, summary.groups, summary.seconds);
  if (summary.skippedFrames > 0) {
    text += fmt::format(", {} frames skipped", summary.skippedFrames);
  }
  if (!summary.stoppedBy.empty()) {
    text += ", stopped by " + summary.stoppedBy;
  }
  fmt::print(stderr, "{}\n", text);
}

}  // namespace

CLI::App* RunCommand::declare(CLI::App& program) {
  CLI::App* const command =
      program.add_subcommand("run", "Tracks the groups of an input and writes them");
  command->footer(example);
  declareFiles(*command, m_options);
  declareTexts(*command, m_options);
  declareStepOptions(*command, m_options.steps);
  declareBehaviour(*command, m_options);
  return command;
}

int RunCommand::run() {
  if (m_options.steps.showsWindow) {
    const auto screen = std::make_shared<PictureExchange>();
    m_options.steps.pictures.screen = screen;
    runBesideWindow([this] { runSession(); }, screen, m_options.steps.pictures.rate);
  } else {
    runSession();
  }
  return finished;
}

void RunCommand::runSession() {
  RunSession session(m_options);
  const RunSummary summary = session.run();
  if (!m_options.quiet && !summary.pipeClosed) {
    printSummary(summary);
  }
}

}  // namespace grouptracker

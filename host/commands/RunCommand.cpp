#include "host/commands/RunCommand.h"

#include "host/base/InputError.h"
#include "host/commands/RunSession.h"
#include "host/commands/RunStatus.h"
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

constexpr double longestLookAhead = 60.0;  // seconds; all that comes in it is kept in memory
const std::string skip = "skip";
const std::string stop = "stop";

void declareFiles(Options& command, RunOptions& options) {
  declareInput(command, options);
  command
      .add("--parameters", options.parameterFile,
           "the tracker's 47 parameters, in place of a built-in set that suits the rate")
      .reads("FILE");
  command.add("--output", options.outputFile, "the groups of every frame, JSON Lines")
      .writes("FILE");
  command
      .add("--actors", options.actorsFile,
           "what the process put out at every frame, JSON Lines: actors that stand for groups")
      .writes("FILE");
  command.add("--context", options.contextFile, "description of the scene, JSON").reads("FILE");
  command.add("--plugin", options.pluginFile, "the plugin, if not beside the program")
      .reads("FILE");
}

void declareEvidence(Options& command, RunOptions& options) {
  command
      .add("--model", options.modelFile,
           "what speaks for people belonging together, in place of the built-in model")
      .reads("FILE");
  const auto take = [&options](const std::string& text) {
    options.lookAhead = parseFinite(text);
    return options.lookAhead && *options.lookAhead >= 0.0 && *options.lookAhead <= longestLookAhead;
  };
  command
      .addParsed("--look-ahead", take,
                 fmt::format("0 to {} seconds are expected", longestLookAhead),
                 "of what follows a frame, so much is waited for before its groups are decided "
                 "(default: as long as the process waits, at most 3.2)")
      .typeName("SECONDS");
}

void declareTexts(Options& command, RunOptions& options) {
  command
      .add("--diagnostics", options.diagnostics,
           "where the process's lines go instead of standard output; none saves their cost")
      .writes("FILE|none");
  command
      .add("--mobile-dump", options.mobileDump,
           "the file to which all remembered mobiles are appended at every frame, instead "
           "of metas*.txt in the working directory; none saves its cost")
      .writes("FILE|none");
  command
      .add(
          "--status", options.statusFile,
          "says in JSON whether the outputs are complete: false from the first frame on, true when "
          "all is written")
      .writes("FILE");
  command.addFlag("--quiet", options.quiet, "no progress and no summary");
}

void declareBehaviour(Options& command, RunOptions& options) {
  const auto takeChoice = [&options](const std::string& choice) {
    options.skipsFailedFrames = choice == skip;
    return true;
  };
  command
      .addParsed("--on-error", takeChoice, "",
                 "what to do when the process fails at a frame (default stop)")
      .oneOf({skip, stop})
      .typeName("skip|stop");
}

void printSummary(const RunSummary& summary) {
  const std::string groups = summary.groups ? fmt::format(", {} groups", *summary.groups) : "";
  std::string text = fmt::format("{} frames, {} mobiles{} in {:.1f} s", summary.frames,
                                 summary.mobiles, groups, summary.seconds);
  if (summary.skippedFrames > 0) {
    text += fmt::format(", {} frames skipped", summary.skippedFrames);
  }
  if (summary.wantsTimes) {
    text += "; taken to be 0.4 s apart, for the input has no times (--rate)";
  }
  if (!summary.stoppedBy.empty()) {
    text += ", stopped by " + summary.stoppedBy;
  }
  fmt::print(stderr, "{}\n", text);
}

}  // namespace

Options RunCommand::declare(CommandLine& program) {
  Options command =
      program.addCommand("run", "Tracks the groups of an input and writes them", example);
  declareFiles(command, m_options);
  declareEvidence(command, m_options);
  declareTexts(command, m_options);
  declareStepOptions(command, m_options.steps);
  declareBehaviour(command, m_options);
  return command;
}

int RunCommand::run() {
  if (!m_options.wantsGroups() && m_options.actorsFile.empty()) {
    throw InputError("--output", "a file for the groups is expected, or one for --actors");
  }
  if (m_options.steps.pictures.showsTopView && !m_options.steps.wantsPictures() &&
      !m_options.quiet) {
    fmt::print(stderr, "--top-view: warning: nothing is drawn without --video or --show\n");
  }
  const bool takesStandardOutput = m_options.outputFile == "-" || m_options.actorsFile == "-";
  if (takesStandardOutput && m_options.diagnostics.empty()) {
    m_options.diagnostics = noOutput;  // the two would be mixed
  }
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
  const RunStatus status(m_options.statusFile);
  const RunSummary summary = session.run();
  if (summary.stoppedBy.empty() && !summary.pipeClosed) {
    status.complete(summary.frames);
  }
  if (!m_options.quiet && !summary.pipeClosed) {
    printSummary(summary);
  }
}

}  // namespace grouptracker

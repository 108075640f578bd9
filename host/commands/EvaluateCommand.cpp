#include "host/base/InputError.h"
#include "host/base/Log.h"
#include "host/base/OutputFile.h"
#include "host/base/OutputPlace.h"
#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/evaluation/EvaluationReport.h"
#include "host/evaluation/FrameScores.h"
#include "host/evaluation/ScoredSteps.h"
#include "host/evaluation/TruthReader.h"
#include "host/input/InputFormats.h"

#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <string>

namespace grouptracker {

namespace {

/// `grouptracker evaluate`: scores the groups of a run against annotated ones.
class EvaluateCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  GroupedFrames readRun(const std::string& path, const GroupTruth& truth) const;
  std::string inputOfBaselines() const;

  std::string m_groupsFile;
  std::string m_truthFile;
  std::string m_otherFile;   ///< empty when not wanted
  std::string m_outputFile;  ///< empty when not wanted
  std::string m_errorsFile;  ///< empty when not wanted
  InputChoice m_choice;      ///< for the baselines; the input is empty when not given
  bool m_baselines = false;
  EvaluationOptions m_options;
};

const char* const evaluateExample = R"(Example:
  grouptracker evaluate groups.jsonl --truth seq_eth/groups.txt --baselines)";

void declareScores(Options& command, EvaluationOptions& options) {
  constexpr int longest = 1'000'000'000;  // time steps
  command
      .add("--window", options.window.length, "time steps of a window; windows follow each other")
      .within(1, longest)
      .showDefault();
  command
      .add("--together", options.window.together,
           "time steps of a window in one group that make two persons one group")
      .within(1, longest)
      .showDefault();
  command
      .add("--event-tolerance", options.eventTolerance,
           "seconds between a found merge or split and the true one")
      .within(0, longest)
      .showDefault();
}

}  // namespace

Options EvaluateCommand::declare(CommandLine& program) {
  Options command = program.addCommand(
      "evaluate", "Scores the groups of a run against annotated ones", evaluateExample);
  command.add("GROUPS", m_groupsFile, "what a run wrote with --output, or with --actors")
      .required()
      .reads("FILE");
  command
      .add("--truth", m_truthFile,
           "annotated groups: one a line for the whole sequence, or per frame in *.jsonl")
      .required()
      .reads("FILE");
  command.add("--compare", m_otherFile, "the groups of another run, to be put side by side")
      .reads("GROUPS");
  command.add("--output", m_outputFile, "all numbers as JSON").writes("FILE");
  command.add("--errors", m_errorsFile, "who is in the wrong company at which frame, CSV")
      .writes("FILE");
  command.addFlag("--baselines", m_baselines,
                  "also score everybody alone and a crude rule over the window");
  command
      .add("--input", m_choice.input,
           "the input of the run, for --baselines (default: the folder of the truth)")
      .reads("INPUT");
  declareScores(command, m_options);
  declareReading(command, m_choice);
  return command;
}

int EvaluateCommand::run() {
  const GroupTruth truth = readTruth(m_truthFile);
  const GroupedFrames run = readRun(m_groupsFile, truth);
  EvaluationReport report = evaluate(run, truth, m_options);
  if (m_baselines) {
    InputOptions options = inputOptions(m_choice);
    options.decodesVideo = false;
    const OpenedInput input = openInput(inputOfBaselines(), options);
    refuseOverwriting({m_outputFile, m_errorsFile}, input.files);
    report.baselines = scoreBaselines(peopleIn(*input.frames), truth, m_options.window);
  }
  fmt::print("{}", m_otherFile.empty() ? tableOf(report)
                                       : comparisonOf(report, evaluate(readRun(m_otherFile, truth),
                                                                       truth, m_options)));
  if (!m_outputFile.empty()) {
    OutputFile(m_outputFile).writeLines(jsonOf(report));
  }
  if (!m_errorsFile.empty()) {
    const GroupedFrames frames = annotated(run, truth);
    writeErrorList(frames, stepsOf(frames, truth), m_errorsFile);
  }
  return finished;
}

GroupedFrames EvaluateCommand::readRun(const std::string& path, const GroupTruth& truth) const {
  GroupedFrames run = readScored(path);
  if (const auto problem = whyAboutOthers(truth, run)) {
    throw InputError(m_truthFile, 1, *problem + path);
  }
  if (const auto doubt = doubtAboutPeople(truth, run)) {
    program_log::write(program_log::Level::warning,
                       fmt::format("{}: warning: {}", m_truthFile, *doubt));
  }
  return run;
}

std::string EvaluateCommand::inputOfBaselines() const {
  const auto folder = std::filesystem::path(m_truthFile).parent_path();
  return m_choice.input.empty() ? (folder.empty() ? "." : folder.string()) : m_choice.input;
}

std::unique_ptr<Command> makeEvaluateCommand() {
  return std::make_unique<EvaluateCommand>();
}

}  // namespace grouptracker

#include "host/base/InputError.h"
#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/commands/RunOptions.h"
#include "host/commands/StepOptions.h"
#include "host/commands/check/CheckReport.h"
#include "host/commands/check/FrameCheck.h"
#include "host/commands/check/ParameterCheck.h"
#include "host/evaluation/ScoredSteps.h"
#include "host/evaluation/TruthReader.h"
#include "host/input/InputFormats.h"
#include "host/input/InputWatch.h"
#include "host/input/SceneContextReader.h"
#include "host/run/RunParameters.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

namespace {

/// `grouptracker check`: reads all files as a run would, without running, and says on standard
/// output what is wrong and what is suspicious. The exit status is 0 when all is well, 1 with
/// warnings only, 2 with problems.
class CheckCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  void checkFiles(CheckReport& report);
  void checkParameters(CheckReport& report);
  void checkInput(CheckReport& report) const;
  void checkTruth(const GroupedFrames& people, CheckReport& report) const;

  InputChoice m_choice;
  StepOptions m_steps;  ///< what a run would be asked to draw
  std::string m_parameterFile;
  std::vector<std::string> m_parameterChanges;
  std::string m_truthFile;
  std::string m_contextFile;
  InputDemands m_demands;  ///< of the parameters, as soon as they are read
};

const char* const checkExample = R"(Example:
  grouptracker check tracks.txt --parameters samples/parameters/walking.txt --calibration camera.yml

Exit status: 0 when all is well, 1 with warnings only, 2 with problems.)";

enum CheckStatus : int { allIsWell = 0, onlyWarnings = 1, hasProblems = 2 };

std::string counted(std::size_t count, const char* what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

/// Does one step of the check; a problem that ends the step does not end the check.
template <typename Step>
bool isWell(CheckReport& report, const Step& step) {
  try {
    step();
    return true;
  } catch (const InputError& error) {
    report.problem(error);
    return false;
  }
}

/// The people of a frame, for a truth that is to be about them.
FrameGroups allAlone(const InputFrame& frame) {
  FrameGroups people;
  people.frame = frame.number;
  for (const RunPerson& person : personsIn(frame)) {
    people.alone.push_back(person.id);
  }
  std::sort(people.alone.begin(), people.alone.end());
  return people;
}

InputWatch checkFrames(const OpenedInput& input, CheckReport& report, GroupedFrames* people) {
  InputWatch watch(input.imageSize);
  FrameCheck frames(report, input.calibration, input.imageSize);
  InputFrame frame;
  bool hasMore = true;
  bool hasDamage = false;
  while (hasMore) {
    try {
      hasMore = input.frames->next(frame);
      if (hasMore) {
        frames.look(frame);
        watch.look(frame);
        people != nullptr ? people->push_back(allAlone(frame)) : void();
      }
    } catch (const UndeclaredMobile& error) {
      // Behind a damaged frame nobody knows what it would have declared.
      hasDamage ? void() : report.problem(error);
    } catch (const InputError& error) {
      report.problem(error);
      hasDamage = true;
    }
  }
  return watch;
}

}  // namespace

Options CheckCommand::declare(CommandLine& program) {
  Options command = program.addCommand(
      "check", "Looks through an input and its files without running", checkExample);
  declareInput(command, m_choice);
  declareParameters(command, m_parameterFile, m_parameterChanges);
  command.add("--context", m_contextFile, "description of the scene, JSON").reads("FILE");
  command.add("--truth", m_truthFile, "annotated groups, which should be about the same people")
      .reads("FILE");
  declarePictureOptions(command, m_steps);
  return command;
}

int CheckCommand::run() {
  CheckReport report([](const std::string& line) { fmt::print("{}\n", line); });
  try {
    checkFiles(report);
  } catch (const TooManyProblems&) {
    fmt::print("stopped after {}\n", counted(report.problems(), "problem"));
  }
  report.printRest();
  fmt::print("{}, {} of warnings\n", counted(report.problems(), "problem"),
             counted(report.warnings(), "kind"));
  if (report.problems() > 0) {
    return hasProblems;
  }
  return report.warnings() > 0 ? onlyWarnings : allIsWell;
}

void CheckCommand::checkFiles(CheckReport& report) {
  m_demands.takesAll = m_choice.frames.isWhole();
  isWell(report, [&] { checkParameters(report); });
  if (const auto doubt = m_steps.doubt()) {
    report.warn("pictures", {m_choice.input}, *doubt);
  }
  if (!m_contextFile.empty()) {
    isWell(report, [&] { readSceneContext(m_contextFile); });
  }
  isWell(report, [&] { checkInput(report); });
}

void CheckCommand::checkParameters(CheckReport& report) {
  RunParameters chosen(m_parameterFile, m_parameterChanges);
  InputChoice withoutCamera = m_choice;  // times need none, and it is looked at later
  withoutCamera.calibrationFile.clear();
  const auto step = secondsBetweenFrames(m_choice.input, inputOptions(withoutCamera));
  step ? chosen.suit(1.0 / *step) : void();
  const ParameterFile& parameters = chosen.values();
  if (!m_parameterFile.empty() || !m_parameterChanges.empty()) {
    checkParameterValues(parameters, m_parameterFile.empty() ? "--set" : m_parameterFile, report);
  }
  m_demands.delay = parameters.delay;
  m_demands.needsImages = parameters.needsImages;
}

void CheckCommand::checkInput(CheckReport& report) const {
  InputOptions options;
  const bool hasCamera = isWell(report, [&] { options = inputOptions(m_choice); });
  if (!hasCamera) {
    InputChoice withoutCamera = m_choice;
    withoutCamera.calibrationFile.clear();
    options = inputOptions(withoutCamera);
  }
  options.onProblem = [&](const InputError& error) { report.problem(error); };
  options.onWarning = [&](const std::string& warning) {
    report.warn(warning, {m_choice.input}, warning);
  };
  OpenedInput input = openInput(m_choice.input, options);
  for (const std::string& note : input.notes) {
    report.warn(note, {m_choice.input}, note);
  }
  for (const std::string& warning : input.warnings) {
    report.warn(warning, {m_choice.input}, warning);
  }
  if (input.calibration && input.calibration->getPosition().z <= 0.0) {
    report.warn("camera", {m_choice.calibrationFile}, "the camera stands below the ground");
  }
  GroupedFrames people;
  const InputWatch watch = checkFrames(input, report, m_truthFile.empty() ? nullptr : &people);
  for (const std::string& warning : watch.warnings(m_demands)) {
    report.warn(warning, {m_choice.input}, warning);
  }
  if (!m_truthFile.empty()) {
    checkTruth(people, report);
  }
}

void CheckCommand::checkTruth(const GroupedFrames& people, CheckReport& report) const {
  const GroupTruth truth = readTruth(m_truthFile);
  if (const auto problem = whyAboutOthers(truth, people)) {
    report.problem(InputError(m_truthFile, 1, *problem + m_choice.input));
  }
  if (const auto doubt = doubtAboutPeople(truth, people)) {
    report.warn("truth", {m_truthFile}, *doubt);
  }
}

std::unique_ptr<Command> makeCheckCommand() {
  return std::make_unique<CheckCommand>();
}

}  // namespace grouptracker

#include "host/base/InputError.h"
#include "host/base/Interruption.h"
#include "host/base/OutputError.h"
#include "host/base/SystemProblem.h"
#include "host/commands/CalibrateCommand.h"
#include "host/commands/CheckCommand.h"
#include "host/commands/Command.h"
#include "host/commands/CommandLine.h"
#include "host/commands/ConvertCommand.h"
#include "host/commands/EvaluateCommand.h"
#include "host/commands/EventsCommand.h"
#include "host/commands/ExplainCommand.h"
#include "host/commands/FileGuard.h"
#include "host/commands/LearnCommand.h"
#include "host/commands/ReportCommand.h"
#include "host/commands/RunCommand.h"
#include "host/commands/SimulateCommand.h"
#include "host/commands/StopSignals.h"
#include "host/commands/TuneCommand.h"
#include "host/pictures/window/RunBesideWindow.h"
#include "host/run/ParameterFile.h"
#include "host/run/TrackerRun.h"

#include <QCoreApplication>
#include <fmt/format.h>
#include <opencv2/core/utility.hpp>
#include <opencv2/core/utils/logger.hpp>

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using namespace grouptracker;

namespace {

const char* const inputsHelp = R"(Tracks that it takes, told apart by their content:
  CSV or TSV: frame,id,x,y         grouptracker check tracks.csv
  with other names or units        grouptracker check tracks.csv --columns frame=t,id=ped --unit cm
  text without names               grouptracker check tracks.txt --columns frame,id,x,y
  text of a pedestrian laboratory  grouptracker check run.txt
  SQLite of a simulation           grouptracker check run.sqlite
  obsmat.txt, or its folder        grouptracker check seq_eth
  MOTChallenge file or folder      grouptracker check MOT16-02
  XML with boxes                   grouptracker check boxes.xml
  scene with links                 grouptracker check scene.jsonl)";

/// Every command of the program; a new one is one more row.
std::vector<std::unique_ptr<Command>> allCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(std::make_unique<RunCommand>());
  commands.push_back(std::make_unique<SimulateCommand>());
  commands.push_back(std::make_unique<EvaluateCommand>());
  commands.push_back(std::make_unique<TuneCommand>());
  commands.push_back(std::make_unique<LearnCommand>());
  commands.push_back(std::make_unique<EventsCommand>());
  commands.push_back(std::make_unique<ConvertCommand>());
  commands.push_back(std::make_unique<CalibrateCommand>());
  commands.push_back(std::make_unique<CheckCommand>());
  commands.push_back(std::make_unique<ReportCommand>());
  commands.push_back(std::make_unique<ExplainCommand>());
  return commands;
}

/// OpenCV reports errors on standard error by itself; the program says them in one line.
void silenceOpenCv() {
  cv::redirectError([](int, const char*, const char*, const char*, int, void*) { return 0; });
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
}

int report(const std::exception& failure, ExitStatus status) {
  std::fflush(stdout);
  fmt::print(stderr, "{}\n", failure.what());
  return status;
}

/// Whatever a command printed has to arrive; a reader who has gone wants no more of it.
void finishStandardOutput() {
  if (std::fflush(stdout) != 0 && errno != EPIPE) {
    throw OutputError("standard output", systemProblem("cannot be written"));
  }
}

int runCommand(Command& command, const Options& options) {
  try {
    refuseToDestroy(options);
    const int status = command.run();
    finishStandardOutput();
    return status == finished ? StopSignals::exitStatus() : status;
  } catch (const WrongParameters& failure) {
    return report(failure, wrongParameters);
  } catch (const InputError& failure) {
    return report(failure, wrongInput);
  } catch (const OutputError& failure) {
    return report(failure, outputFailed);
  } catch (const ProcessError& failure) {
    return report(failure, processFailed);
  } catch (const Interruption&) {
    return StopSignals::exitStatus();
  } catch (const std::exception& failure) {
    return report(std::runtime_error(std::string("unexpected: ") + failure.what()), processFailed);
  }
}

/// Runs a command within the application that it needs.
int runWithin(Command& command, const Options& options, int& argc, char** argv) {
  const auto application = command.needsScreen() ? openScreen(argc, argv)
                                                 : std::make_unique<QCoreApplication>(argc, argv);
  std::setlocale(LC_NUMERIC, "C");  // Qt takes the user's; files have points in their numbers
  return runCommand(command, options);
}

}  // namespace

int main(int argc, char** argv) {
  silenceOpenCv();
  std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow further is a failing write instead
  CommandLine line("Turns the people whom a tracker sees into groups that live over time",
                   GROUPTRACKER_VERSION);
  line.endHelpWith(inputsHelp);
  std::vector<std::pair<Options, std::unique_ptr<Command>>> commands;
  for (auto& command : allCommands()) {
    const Options options = command->declare(line);
    commands.emplace_back(options, std::move(command));
  }
  if (const auto status = line.parse(argc, argv)) {
    return *status;
  }
  for (const auto& [options, command] : commands) {
    if (options.wereChosen()) {
      return runWithin(*command, options, argc, argv);
    }
  }
  return wrongInput;
}

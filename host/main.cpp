#include "host/base/FileDescriptor.h"
#include "host/base/InputError.h"
#include "host/base/Interruption.h"
#include "host/base/Log.h"
#include "host/base/OutputPlace.h"
#include "host/commands/Command.h"
#include "host/commands/CommandLine.h"
#include "host/commands/StopSignals.h"
#include "host/input/InputFormats.h"
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
#include <fcntl.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace grouptracker;

/// Asked by jemalloc: frames are freed several at once, so that each thread keeps more free records
/// at hand than usual.
extern "C" [[gnu::visibility("default")]] const char* malloc_conf;  // NOLINT: jemalloc's name
const char* malloc_conf = "lg_tcache_nslots_mul:4,tcache_nslots_small_max:2000";

namespace {

const char* const inputsHelp = R"(To begin with: grouptracker run tracks.csv

Tracks that it takes, told apart by their content:
  CSV or TSV: frame,id,x,y         grouptracker check tracks.csv
  with other names or units        grouptracker check tracks.csv --columns frame=t,id=ped --unit cm
  text without names               grouptracker check tracks.txt --columns frame,id,x,y
  text of a pedestrian laboratory  grouptracker check run.txt
  SQLite of a simulation           grouptracker check run.sqlite
  obsmat.txt, or its folder        grouptracker check seq_eth
  MOTChallenge file or folder      grouptracker check MOT16-02
  XML with boxes                   grouptracker check boxes.xml
  scene with links                 grouptracker check scene.jsonl
  people messages, line by line    grouptracker check people.jsonl
  what arrives, of all the lines   sender | grouptracker run -
  topics of an MQTT broker         grouptracker run mqtt://broker/people)";

/// Every command of the program; a new one is one more row.
std::vector<std::unique_ptr<Command>> allCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(makeRunCommand());
  commands.push_back(makeBatchCommand());
  commands.push_back(makeSimulateCommand());
  commands.push_back(makeEvaluateCommand());
  commands.push_back(makeTuneCommand());
  commands.push_back(makeLearnCommand());
  commands.push_back(makeEventsCommand());
  commands.push_back(makeConvertCommand());
  commands.push_back(makeCalibrateCommand());
  commands.push_back(makeCheckCommand());
  commands.push_back(makeReportCommand());
  commands.push_back(makeExplainCommand());
  return commands;
}

/// OpenCV reports errors on standard error by itself; the program says them in one line.
void silenceOpenCv() {
  cv::redirectError([](int, const char*, const char*, const char*, int, void*) { return 0; });
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
}

/// Closed standard streams stay closed to whoever uses them, but their places are taken: a file
/// that is opened later must not get what is meant for them.
void takePlacesOfClosedStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) < 0) {
      ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

int report(const std::exception& failure, ExitStatus status) {
  std::fflush(stdout);
  program_log::write(program_log::Level::error, failure.what());
  return status;
}

/// Whatever is printed has to arrive; a reader who has gone wants no more of it.
template <typename Work>
int runAndPrint(const Work& work) {
  try {
    const int status = work();
    if (std::fflush(stdout) != 0 && errno != EPIPE) {
      throw std::system_error(errno, std::generic_category());
    }
    return status;
  } catch (const std::system_error& failure) {
    if (std::ferror(stdout) == 0) {
      throw;
    }
    const int error = failure.code().value();
    if (error == EPIPE) {
      throw ClosedPipe("-");
    }
    throw OutputError("standard output", systemProblem("cannot be written", error));
  }
}

/// Refuses a command line that would destroy something, whatever the command: an output that is one
/// of the files that the command reads, also those within an input's folder and the one on standard
/// input, or that is another output or the file on standard output, under whatever name. Throws
/// `OutputError` that names both. Files that an input names inside are the command's own affair.
void refuseToDestroy(const Options& command) {
  std::vector<std::string> written = command.filesWritten();
  if (std::erase(written, "-") > 1) {
    throw OutputError("-", "standard output takes one of the outputs only");
  }
  std::vector<std::string> inputs;
  for (const std::string& input : command.filesRead()) {
    inputs.push_back(input);
    const std::vector<std::string> within = filesWithin(input);
    inputs.insert(inputs.end(), within.begin(), within.end());
  }
  refuseOverwriting(written, inputs);
}

/// The exit status of what works and prints; a failure is told in one line.
template <typename Work>
int statusOf(const Work& work) {
  try {
    const int status = runAndPrint(work);
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
  program_log::setFormat(command.logFormat());
  const auto application = command.needsScreen() ? openScreen(argc, argv)
                                                 : std::make_unique<QCoreApplication>(argc, argv);
  std::setlocale(LC_NUMERIC, "C");  // Qt takes the user's; files have points in their numbers
  return statusOf([&] {
    refuseToDestroy(options);
    return command.run();
  });
}

}  // namespace

int main(int argc, char** argv) {
  takePlacesOfClosedStreams();
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
  bool isAnswered = false;  // by help, or by what is wrong with the line
  const int status = statusOf([&] {
    const auto answer = line.parse(argc, argv);
    isAnswered = answer.has_value();
    return answer.value_or(finished);
  });
  if (isAnswered || status != finished) {
    return status;
  }
  for (const auto& [options, command] : commands) {
    if (options.wereChosen()) {
      return runWithin(*command, options, argc, argv);
    }
  }
  return wrongInput;
}

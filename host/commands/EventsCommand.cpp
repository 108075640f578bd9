#include "host/base/FileDescriptor.h"
#include "host/base/InputFile.h"
#include "host/base/Interruption.h"
#include "host/base/Log.h"
#include "host/base/OutputPlace.h"
#include "host/commands/Command.h"
#include "host/commands/InputChoice.h"
#include "host/commands/StepOptions.h"
#include "host/commands/StepOutputs.h"
#include "host/input/InputFormats.h"
#include "host/output/LineExports.h"
#include "host/output/RunReplay.h"

#include <fmt/format.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

/// `grouptracker events`: finds in the groups file of a run what happened to the groups, the same
/// events that the run itself writes.
class EventsCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  std::string m_groupsFile;
  std::string m_outputFile;  ///< standard output when empty
  InputChoice m_choice;      ///< of the run's input, which may be left out
  StepOptions m_steps;
};

const char* const eventsExample = R"(Example:
  grouptracker events groups.jsonl --graph lineage.dot)";

/// Writes event lines to standard output.
class EventPrinter : public StepSink {
 public:
  void write(const RunStep& step) override {
    for (const TrackedEvent& event : step.events) {
      std::fputs(toJsonLine(event).c_str(), stdout);
    }
    if (!step.events.empty() && std::fflush(stdout) != 0) {
      if (!hasReader(STDOUT_FILENO)) {
        throw ClosedPipe("-");
      }
      throw OutputError("standard output", systemProblem("cannot be written"));
    }
  }
};

/// What was read before an error in the file is written all the same.
void replay(RunReplay& run, StepOutputs& sinks, const OutputReaders& readers) {
  try {
    for (RunStep step; !readers.haveAllLeft() && run.next(step);) {
      sinks.take(std::move(step));
    }
  } catch (...) {
    sinks.finishAfterFailure();
    throw;
  }
  sinks.finish();
}

std::unique_ptr<StepSink> openEvents(const std::string& file) {
  if (file.empty()) {
    return std::make_unique<EventPrinter>();
  }
  return std::make_unique<EventWriter>(file);
}

}  // namespace

Options EventsCommand::declare(CommandLine& program) {
  Options command =
      program.addCommand("events", "Tells what happened to the groups of a run", eventsExample);
  command
      .add("GROUPS", m_groupsFile,
           "what a run wrote with --output, or with --actors; - for standard input")
      .required()
      .reads("FILE");
  command.add("--output", m_outputFile, "the events, JSON Lines, instead of standard output")
      .writes("FILE");
  command
      .add("--input", m_choice.input,
           "what was given to run: the exports then tell where people were")
      .reads("INPUT");
  declareReplayOptions(command, m_steps);
  declareReading(command, m_choice);
  return command;
}

int EventsCommand::run() {
  if (m_steps.wantsPictures() && m_choice.input.empty()) {
    throw InputError(m_groupsFile, "does not tell where people were: --video needs --input");
  }
  InputFile file(m_groupsFile);
  RunReplay run(file.stream(), m_groupsFile);
  OpenedInput input;
  if (!m_choice.input.empty()) {
    InputOptions options = inputOptions(m_choice);
    options.decodesVideo = m_steps.wantsPictures();
    input = openInput(m_choice.input, options);
    run.takeInputFrom(*input.frames, m_choice.input);
  }
  StepSinks own;  // opened when the inputs have been
  own.push_back(openEvents(m_outputFile));
  std::signal(SIGPIPE, SIG_IGN);  // who reads one output may leave without ending the others
  OutputReaders readers;
  StepOutputs sinks(m_steps, std::move(own), readers);
  replay(run, sinks, readers);
  for (const std::string& warning : readers.warnings()) {
    program_log::write(program_log::Level::warning, warning);
  }
  return readers.hasAnybodyLeft() ? readerLeft : finished;
}

std::unique_ptr<Command> makeEventsCommand() {
  return std::make_unique<EventsCommand>();
}

}  // namespace grouptracker

#pragma once

#include "host/base/ExitStatus.h"
#include "host/base/Log.h"
#include "host/commands/CommandLine.h"

#include <memory>

namespace grouptracker {

/// One command of the program, such as `run`.
class Command {
 public:
  Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;
  virtual ~Command() = default;

  /// Adds the command with its options to the program's command line. The command keeps what the
  /// user chose and outlives the parsing.
  virtual Options declare(CommandLine& program) = 0;
  /// Whether the user chose something that opens a window.
  virtual bool needsScreen() const { return false; }
  /// How the user wants the program to say things of itself.
  virtual program_log::Format logFormat() const { return program_log::Format::text; }
  /// Does the work; called when the user chose this command. Throws `InputError`, `OutputError` or
  /// `ProcessError` for the program to report; returns the exit status otherwise.
  virtual int run() = 0;
};

/// The commands of the program, each in the file of its name.
std::unique_ptr<Command> makeRunCommand();
std::unique_ptr<Command> makeSimulateCommand();
std::unique_ptr<Command> makeEvaluateCommand();
std::unique_ptr<Command> makeTuneCommand();
std::unique_ptr<Command> makeLearnCommand();
std::unique_ptr<Command> makeEventsCommand();
std::unique_ptr<Command> makeConvertCommand();
std::unique_ptr<Command> makeCalibrateCommand();
std::unique_ptr<Command> makeCheckCommand();
std::unique_ptr<Command> makeReportCommand();
std::unique_ptr<Command> makeBatchCommand();
std::unique_ptr<Command> makeExplainCommand();

}  // namespace grouptracker

#pragma once

#include "host/base/ExitStatus.h"
#include "host/commands/CommandLine.h"

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
  /// Does the work; called when the user chose this command. Throws `InputError`, `OutputError` or
  /// `ProcessError` for the program to report; returns the exit status otherwise.
  virtual int run() = 0;
};

}  // namespace grouptracker

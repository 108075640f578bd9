#pragma once

#include <CLI/CLI.hpp>

namespace grouptracker {

/// The statuses with which the program ends.
enum ExitStatus : int {
  finished = 0,         ///< also when the user or the reader of a pipe ended the run
  wrongParameters = 1,  ///< ended by the process itself, from within
  wrongInput = 2,       ///< also a wrong command line
  processFailed = 3,    ///< an exception left the process
  outputFailed = 4,     ///< a file cannot be written, or a window not be opened
};

/// One command of the program, such as `run`.
class Command {
 public:
  Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;
  virtual ~Command() = default;

  /// Adds the command with its options to the program's command line. The command keeps what the
  /// user chose and outlives the parsing.
  virtual CLI::App* declare(CLI::App& program) = 0;
  /// Whether the user chose something that opens a window.
  virtual bool needsScreen() const { return false; }
  /// Does the work; called when the user chose this command. Throws `InputError`, `OutputError` or
  /// `ProcessError` for the program to report; returns the exit status otherwise.
  virtual int run() = 0;
};

}  // namespace grouptracker

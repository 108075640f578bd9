#pragma once

namespace grouptracker {

/// The statuses with which the program ends.
enum ExitStatus : int {
  finished = 0,         ///< also when the user or the reader of a pipe ended the run
  wrongParameters = 1,  ///< ended by the process itself, from within
  wrongInput = 2,       ///< also a wrong command line
  processFailed = 3,    ///< an exception left the process
  outputFailed = 4,     ///< a file cannot be written, or a window not be opened
};

}  // namespace grouptracker

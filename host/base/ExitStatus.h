#pragma once

namespace grouptracker {

/// The statuses with which the program ends.
enum ExitStatus : int {
  finished = 0,  ///< also when the reader of a pipe ended the run; a signal is 128 + its number
  wrongParameters = 1,  ///< a parameter file that the process would not take
  wrongInput = 2,       ///< also a wrong command line
  processFailed = 3,    ///< an exception left the process
  outputFailed = 4,     ///< a file cannot be written, or a window not be opened
};

}  // namespace grouptracker

#pragma once

namespace grouptracker {

/// The statuses with which the program ends.
enum ExitStatus : int {
  finished = 0,         ///< of a stop by a signal it is 128 + the signal's number
  wrongParameters = 1,  ///< a parameter file that the process would not take
  wrongInput = 2,       ///< also a wrong command line
  processFailed = 3,    ///< an exception left the process
  outputFailed = 4,     ///< a file cannot be written, or a window not be opened
  readerLeft = 5,       ///< all is done but what somebody wanted who left before its end
  someFailed = 6,       ///< some recordings of a batch failed, all others are done
};

}  // namespace grouptracker

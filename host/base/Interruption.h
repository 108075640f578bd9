#pragma once

#include <stdexcept>
#include <string>

namespace grouptracker {

/// An end that somebody outside wished and that is nobody's fault: the program then ends quietly,
/// with the status of success. A run ends its outputs first; everywhere else the program itself
/// takes care of it.
class Interruption : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The reader of a pipe that the program writes to has gone. The text is what was written, as the
/// user calls it.
class ClosedPipe : public Interruption {
 public:
  explicit ClosedPipe(const std::string& file)
      : Interruption(file == "-" ? "standard output" : file) {}
};

/// The program is asked to stop while a read waits for more input.
class InputInterrupted : public Interruption {
 public:
  InputInterrupted() : Interruption("stopped while waiting for input") {}
};

/// The program is asked to stop while it waits for somebody who reads what it writes.
class OutputInterrupted : public Interruption {
 public:
  OutputInterrupted() : Interruption("stopped while waiting for a reader") {}
};

}  // namespace grouptracker

#pragma once

#include <stdexcept>
#include <string>

namespace grouptracker {

/// Something cannot be written; its text is the one line that the user sees, `FILE: what is wrong`.
class OutputError : public std::runtime_error {
 public:
  OutputError(const std::string& file, const std::string& problem)
      : std::runtime_error(file + ": " + problem) {}
};

/// The reader of a pipe that the program writes to has gone; the program then ends quietly.
class ClosedPipe : public std::runtime_error {
 public:
  ClosedPipe() : std::runtime_error("nobody reads the output any more") {}
};

}  // namespace grouptracker

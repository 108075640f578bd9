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

}  // namespace grouptracker

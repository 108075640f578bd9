#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace grouptracker {

/// Bad input of any kind; its text is the one line that the user sees, `FILE:LINE: what is wrong`.
class InputError : public std::runtime_error {
 public:
  /// For a file as a whole, such as one that cannot be opened.
  InputError(const std::string& file, const std::string& problem)
      : std::runtime_error(file + ": " + problem) {}
  InputError(const std::string& file, std::uint64_t line, const std::string& problem)
      : std::runtime_error(file + ":" + std::to_string(line) + ": " + problem) {}
};

/// A name for something that no earlier line declares: a consequence, often, of damage before.
class UndeclaredMobile : public InputError {
 public:
  using InputError::InputError;
  explicit UndeclaredMobile(const InputError& error) : InputError(error) {}
};

}  // namespace grouptracker

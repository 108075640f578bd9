#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace grouptracker {

/// What is wrong with a value, said in a few words by somebody who does not know where it stands;
/// who does makes an `InputError` of it.
class ValueProblem : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Bad input of any kind; its text is the one line that the user sees, `FILE:LINE: what is wrong`.
class InputError : public std::runtime_error {
 public:
  /// For a file as a whole, such as one that cannot be opened.
  InputError(const std::string& file, const std::string& problem)
      : std::runtime_error(file + ": " + problem), m_file(file), m_problem(problem) {}
  InputError(const std::string& file, std::uint64_t line, const std::string& problem)
      : std::runtime_error(file + ":" + std::to_string(line) + ": " + problem),
        m_file(file),
        m_line(line),
        m_problem(problem) {}

  const std::string& file() const { return m_file; }
  /// None when the problem is with the file as a whole.
  std::optional<std::uint64_t> line() const { return m_line; }
  /// What is wrong, without the place.
  const std::string& problem() const { return m_problem; }

 private:
  std::string m_file;
  std::optional<std::uint64_t> m_line;
  std::string m_problem;
};

/// A name for something that no earlier line declares: a consequence, often, of damage before.
class UndeclaredMobile : public InputError {
 public:
  using InputError::InputError;
  explicit UndeclaredMobile(const InputError& error) : InputError(error) {}
};

}  // namespace grouptracker

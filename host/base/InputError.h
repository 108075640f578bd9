#pragma once

#include <cstdint>
#include <functional>
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

/// Where something stands in the input: in a line of a file, or in the file as a whole.
struct InputPlace {
  std::string file;
  std::optional<std::uint64_t> line = std::nullopt;  ///< from 1; none for the file as a whole

  /// The one form in which places are shown: "FILE:LINE" or "FILE".
  std::string text() const { return line ? file + ":" + std::to_string(*line) : file; }
  bool operator==(const InputPlace&) const = default;
};

/// Bad input of any kind; its text is the one line that the user sees, `FILE:LINE: what is wrong`.
class InputError : public std::runtime_error {
 public:
  InputError(InputPlace place, const std::string& problem)
      : std::runtime_error(place.text() + ": " + problem),
        m_place(std::move(place)),
        m_problem(problem) {}
  /// For a file as a whole, such as one that cannot be opened.
  InputError(const std::string& file, const std::string& problem)
      : InputError(InputPlace{file}, problem) {}
  InputError(const std::string& file, std::uint64_t line, const std::string& problem)
      : InputError(InputPlace{file, line}, problem) {}

  const InputPlace& place() const { return m_place; }
  /// What is wrong, without the place.
  const std::string& problem() const { return m_problem; }

 private:
  InputPlace m_place;
  std::string m_problem;
};

/// A name for something that no earlier line declares: a consequence, often, of damage before.
class UndeclaredMobile : public InputError {
 public:
  using InputError::InputError;
  explicit UndeclaredMobile(const InputError& error) : InputError(error) {}
};

/// What a reader calls for a problem behind which it could go on: the one for a run throws the
/// problem, so that the reader ends there; the one for a check notes it and lets the reader pass
/// over the line.
using ProblemHandler = std::function<void(const InputError&)>;

inline void throwProblem(const InputError& problem) {
  throw problem;
}

}  // namespace grouptracker

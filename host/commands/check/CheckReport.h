#pragma once

#include "host/base/InputError.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

namespace grouptracker {

/// Thrown when a check has found so much that looking further serves nobody.
class TooManyProblems : public std::runtime_error {
 public:
  TooManyProblems() : std::runtime_error("too many problems") {}
};

/// Collects what a check finds, each as one line. Problems are handed out as they are found, of
/// each kind the first ones; what is only suspicious is gathered by kind, so that a warning that
/// holds for every frame is one line with the first place and a count.
class CheckReport {
 public:
  static constexpr std::size_t mostProblems = 50;

  explicit CheckReport(std::function<void(const std::string&)> print) : m_print(std::move(print)) {}

  /// Something that a run would stop at. An input may be read twice: what was found in a line is
  /// found once. Throws `TooManyProblems` at the last kind that is reported.
  void problem(const InputError& error);
  /// Something legal but strange at a place; `kind` is one for all that differ in
  /// numbers only.
  void warn(const std::string& kind, const InputPlace& place, const std::string& text);
  /// Hands out how often problems came again, and the warnings; to be called once at the end.
  void printRest() const;

  /// Different ones.
  std::size_t problems() const { return m_problems.size(); }
  std::size_t warnings() const { return m_warnings.size(); }

 private:
  struct Warning {
    std::string text;  ///< of the first, with its place
    std::uint64_t count = 0;
  };

  struct Problem {
    std::uint64_t count = 0;
    std::optional<std::uint64_t> lastLine;
  };

  std::function<void(const std::string&)> m_print;
  std::map<std::string, Problem> m_problems;  ///< by file and what is wrong
  std::map<std::string, Warning> m_warnings;  ///< by kind
};

}  // namespace grouptracker

#pragma once

#include "host/base/InputError.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>

namespace grouptracker {

/// Thrown when a check has found so much that looking further serves nobody.
class TooManyProblems : public std::runtime_error {
 public:
  TooManyProblems() : std::runtime_error("too many problems") {}
};

/// Collects what a check finds, each as one line. Problems are handed out as they are found; what
/// is only suspicious is gathered by kind, so that a warning that holds for every frame is one line
/// with the first place and a count.
class CheckReport {
 public:
  static constexpr std::size_t mostProblems = 50;

  explicit CheckReport(std::function<void(const std::string&)> print) : m_print(std::move(print)) {}

  /// Something that a run would stop at. Throws `TooManyProblems` at the last that is reported.
  void problem(const std::string& text);
  void problem(const InputError& error) { problem(std::string(error.what())); }
  /// Something legal but strange at a place "FILE:LINE"; `kind` is one for all that differ in
  /// numbers only.
  void warn(const std::string& kind, const std::string& place, const std::string& text);
  /// Hands out the warnings; to be called once at the end.
  void printWarnings() const;

  std::size_t problems() const { return m_problems; }
  std::size_t warnings() const { return m_warnings.size(); }

 private:
  struct Warning {
    std::string text;  ///< of the first, with its place
    std::uint64_t count = 0;
  };

  std::function<void(const std::string&)> m_print;
  std::size_t m_problems = 0;
  std::map<std::string, Warning> m_warnings;  ///< by kind
};

}  // namespace grouptracker

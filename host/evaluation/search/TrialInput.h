#pragma once

#include "host/input/OpenedInput.h"

#include <optional>
#include <string>
#include <utility>

namespace grouptracker {

/// An input on which many candidates are tried. It is read once: the processes of the trials are
/// copies of the one that did, and start from what it has in memory. What is too large for that, or
/// arrives bit by bit, each of them reads for itself.
class TrialInput {
 public:
  TrialInput(std::string path, InputOptions options)
      : m_path(std::move(path)), m_options(std::move(options)) {}

  /// Reads the input unless that was done. Bad input is an `InputError`.
  void hold();
  /// The input from its first frame on, linked in such a way unless it has links of its own. Gives
  /// away what is held: to be called in a trial's own process.
  OpenedInput open(const LinkOptions& links);

 private:
  std::string m_path;
  InputOptions m_options;
  bool m_isTried = false;  ///< whether to hold it
  std::optional<OpenedInput> m_held;
};

}  // namespace grouptracker

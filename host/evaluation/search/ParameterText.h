#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

/// The 47 pairs of a parameter file, of which some can be replaced.
class ParameterText {
 public:
  /// Reads a valid parameter file; another one is an `InputError`.
  static ParameterText read(const std::string& path);

  bool has(const std::string& label) const;
  /// The number after a label; 0 for a text.
  double number(const std::string& label) const;
  /// All pairs, one a line, with some numbers replaced.
  std::string with(const std::map<std::string, double>& changes) const;

 private:
  std::vector<std::pair<std::string, std::string>> m_pairs;
};

}  // namespace grouptracker

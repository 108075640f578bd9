#pragma once

#include <string>
#include <variant>
#include <vector>

/// Puts back at the end of a scope all that processes share: every parameter, the calibration, the
/// counter of groups, the palette and the diagnostics. It starts with the counter and the palette
/// at their beginning, so that ids in expectations are small.
class StaticsGuard {
 public:
  StaticsGuard();
  StaticsGuard(const StaticsGuard&) = delete;
  StaticsGuard& operator=(const StaticsGuard&) = delete;
  ~StaticsGuard();

 private:
  using Value = std::variant<double, unsigned int, int, bool, std::string>;

  std::vector<Value> m_parameters;  ///< in the order of the parameter table
  int m_numDigits;
};

/// Gives every parameter a value under which people who walk about a metre apart are a group: a
/// delay of 2 frames, a memory of 20, nothing displayed or saved. To be used within the scope of a
/// `StaticsGuard`.
void setTestParameters();

/// The parameter file that holds the parameters' present values.
std::string parameterText();

#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <string>
#include <variant>

/// A value of any of the types that parameters have.
using ParameterValue = std::variant<double, unsigned int, int, bool, std::string>;

/// The values of a parameter that are nothing to wonder about.
struct UsualRange {
  double lowest = -std::numeric_limits<double>::infinity();
  double highest = std::numeric_limits<double>::infinity();

  bool isLimited() const { return highest < std::numeric_limits<double>::infinity(); }
  bool contains(double value) const { return value >= lowest && value <= highest; }
};

/// What is to know about one parameter of the tracker without knowing the tracker.
struct ParameterRow {
  const char* label;     ///< as the file has it, colon included
  ParameterValue empty;  ///< shows the type of the value
  const char* unit;
  UsualRange usual;
  const char* help;  ///< what the parameter does
};

// NOLINTNEXTLINE(bugprone-macro-parentheses): the rows are a sum
#define PARAMETER(...) +1
inline constexpr std::size_t parameterCount = 0
#include "tracker/parameters/Parameters.def"
    ;

/// The file into which the mobiles are dumped when nobody names one, in the working folder: the
/// value of "imagesFolder:" becomes part of the name.
std::string usualMobileDump(const std::string& imagesFolder);

/// All parameters, in the only order in which a file may have them.
const std::array<ParameterRow, parameterCount>& parameterRows();

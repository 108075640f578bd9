#include "tracker/parameters/ParameterTable.h"

#include <algorithm>

namespace {

constexpr UsualRange anyValue;

constexpr UsualRange usual(double lowest, double highest) {
  return {lowest, highest};
}

}  // namespace

std::string usualMobileDump(const std::string& imagesFolder) {
  std::string name = "metas" + imagesFolder + ".txt";
  name.erase(std::remove(name.begin(), name.end(), '/'), name.end());
  return name;
}

const std::array<ParameterRow, parameterCount>& parameterRows() {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a row is no expression
#define PARAMETER(label, member, type, unit, range, help) {label, type{}, unit, range, help},
  static const std::array<ParameterRow, parameterCount> rows{{
#include "tracker/parameters/Parameters.def"
  }};
  return rows;
}

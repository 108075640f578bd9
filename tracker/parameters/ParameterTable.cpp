#include "tracker/parameters/ParameterTable.h"

namespace {

constexpr UsualRange anyValue;

constexpr UsualRange usual(double lowest, double highest) {
  return {lowest, highest};
}

}  // namespace

const std::array<ParameterRow, parameterCount>& parameterRows() {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a row is no expression
#define PARAMETER(label, member, type, unit, range, help) {label, type{}, unit, range, help},
  static const std::array<ParameterRow, parameterCount> rows{{
#include "tracker/parameters/Parameters.def"
  }};
  return rows;
}

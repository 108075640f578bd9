#include "tracker/plugin/ParameterReader.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupExtension.h"
#include "tracker/geometry/Util.h"
#include "tracker/plugin/GroupTrackerProcessGroupTrackerPrivate.h"
#include "tracker/plugin/SuddenDetect.h"
#include "tracker/tracking/Group.h"
#include "tracker/tracking/GroupTracker.h"
#include "tracker/tracking/MetaLPO.h"

#include <fmt/format.h>

#include <cstdlib>
#include <fstream>
#include <istream>

const std::array<Parameter, parameterCount>& parameterTable() {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a row is no expression
#define PARAMETER(label, member, type, unit, range, help) {label, static_cast<type*>(&member)},
  static const std::array<Parameter, parameterCount> table{{
#include "tracker/parameters/Parameters.def"
  }};
  return table;
}

template <typename Stream>
void ReadLabel(Stream& in, const char* expected) {
  std::string label;
  in >> label;
  if (label == expected) {
    return;
  }
  Diagnostics::printAlways("\nError reading parameter: {} : {}\nstr size: {}", label, expected,
                           label.size());
  Diagnostics::flush();
  std::exit(1);
}

template <typename Stream>
void readParameters(Stream& in) {
  for (const auto& [label, member] : parameterTable()) {
    ReadLabel(in, label);
    std::visit([&](auto* value) { in >> *value; }, member);
  }
}

template void ReadLabel(std::ifstream& in, const char* expected);
template void ReadLabel(std::istream& in, const char* expected);
template void readParameters(std::ifstream& in);
template void readParameters(std::istream& in);

std::string parameterProblem(std::istream& in) {
  constexpr std::size_t longestQuote = 40;  // characters of a wrong token
  for (const ParameterRow& row : parameterRows()) {
    std::string label;
    in >> label;
    if (label != row.label) {
      return fmt::format("\"{}\" stands where \"{}\" is expected", label.substr(0, longestQuote),
                         row.label);
    }
    ParameterValue value = row.empty;
    if (!std::visit([&](auto& member) { return static_cast<bool>(in >> member); }, value)) {
      return fmt::format("the value after \"{}\" is missing or not of its type", row.label);
    }
  }
  return {};
}

ParameterValues parameterValues() {
  ParameterValues values;
  values.reserve(parameterCount);
  for (const Parameter& parameter : parameterTable()) {
    std::visit([&](const auto* member) { values.emplace_back(*member); }, parameter.member);
  }
  return values;
}

std::string changedLabels(const ParameterValues& before) {
  const ParameterValues now = parameterValues();
  std::string labels;
  for (std::size_t i = 0; i < now.size(); ++i) {
    if (now[i] != before[i]) {
      labels += (labels.empty() ? "" : " ") + std::string(parameterTable()[i].label);
    }
  }
  return labels;
}

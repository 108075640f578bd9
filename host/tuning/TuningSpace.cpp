#include "TuningSpace.h"

#include "InputError.h"
#include "LineReader.h"
#include "LinkArguments.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <sstream>

namespace {

using Scale = TunedValue::Scale;

const std::array<std::pair<const char*, Scale>, 3> scaleNames{{
    {"linear", Scale::linear},
    {"logarithmic", Scale::logarithmic},
    {"whole", Scale::whole},
}};

const char* const delayLabel = "temporalWinSize:";
const char* const memoryLabel = "temporalWinForRemoval:";

TunedValue parseValue(const std::string& line) {
  std::istringstream in(line);
  TunedValue value;
  std::string scale;
  std::string rest;
  const bool isWhole = in >> value.name >> value.low >> value.high >> scale && !(in >> rest) &&
                       value.low <= value.high;
  const auto known = std::find_if(scaleNames.begin(), scaleNames.end(),
                                  [&scale](const auto& name) { return name.first == scale; });
  if (!isWhole || known == scaleNames.end() ||
      (known->second == Scale::logarithmic && value.low <= 0.0)) {
    throw std::invalid_argument(
        "a name, the lowest and highest value and linear, logarithmic or whole are expected");
  }
  value.scale = known->second;
  return value;
}

double rounded(double number) {
  constexpr double digits = 3.0;
  if (number == 0.0) {
    return 0.0;
  }
  const double unit = std::pow(10.0, digits - 1.0 - std::floor(std::log10(std::abs(number))));
  return std::round(number * unit) / unit;
}

}  // namespace

TuningSpace TuningSpace::standard() {
  TuningSpace space;
  space.m_values = {
      {"coherenceThreshold:", 1.0, 12.0, Scale::logarithmic},
      {"distWeight:", 1.0, 12.0, Scale::whole},
      {"speedSimWeight:", 0.0, 24.0, Scale::whole},
      {"dirSimWeight:", 0.0, 30.0, Scale::whole},
      {delayLabel, 3.0, 14.0, Scale::whole},
      {memoryLabel, 1.0, 16.0, Scale::whole},
      {"maxDistGroupCreation:", 0.6, 4.0, Scale::logarithmic},
      {"maxDistGroupUpdate:", 1.0, 6.0, Scale::logarithmic},
      {"minReliabilityBest:", 0.0, 1.0, Scale::linear},
      {"minReliabilityOthers:", 0.0, 0.5, Scale::linear},
      {"sonDistanceWeight:", 0.0, 40.0, Scale::linear},
      {"fatherDistanceWeight:", 0.0, 40.0, Scale::linear},
      {"--chain", 1.0, 3.0, Scale::whole},
      {"--own-links", 1.0, 6.0, Scale::whole},
      {"--neighbour-links", 0.0, 1.0, Scale::linear},
      {"--neighbour-radius", 0.5, 6.0, Scale::logarithmic},
      {"--neighbour-count", 1.0, 5.0, Scale::whole},
      {"--motion-difference", 0.0, 4.0, Scale::linear},
      {"--motion-steps", 1.0, 10.0, Scale::whole},
  };
  return space;
}

TuningSpace TuningSpace::read(std::istream& in, const std::string& name) {
  TuningSpace space;
  LineReader lines(in, name);
  while (lines.nextFilled()) {
    if (lines.line().front() == '#') {
      continue;
    }
    try {
      space.m_values.push_back(parseValue(lines.line()));
    } catch (const std::invalid_argument& problem) {
      throw lines.error(problem.what());
    }
  }
  return space;
}

double TuningSpace::placeOf(const TunedValue& value, double number) {
  const double inside = std::clamp(number, value.low, value.high);
  if (value.low == value.high) {
    return 0.0;
  }
  return value.scale == Scale::logarithmic
             ? std::log(inside / value.low) / std::log(value.high / value.low)
             : (inside - value.low) / (value.high - value.low);
}

double TuningSpace::atPlace(const TunedValue& value, double place) {
  const double inside = std::clamp(place, 0.0, 1.0);
  const double number = value.scale == Scale::logarithmic
                            ? value.low * std::pow(value.high / value.low, inside)
                            : value.low + (value.high - value.low) * inside;
  const double readable = value.scale == Scale::whole ? std::round(number) : rounded(number);
  return std::clamp(readable, value.low, value.high);
}

Candidate TuningSpace::baseOf(const ParameterText& base) const {
  Candidate candidate;
  const LinkOptions links;
  for (const TunedValue& value : m_values) {
    double number = 0.0;
    if (!linkArgument(links, value.name, number)) {
      if (!base.has(value.name)) {
        throw InputError(value.name, "neither a parameter nor a link option");
      }
      number = base.number(value.name);
      number -= value.name == memoryLabel ? base.number(delayLabel) : 0.0;
    }
    candidate.push_back(atPlace(value, placeOf(value, number)));
  }
  return candidate;
}

TrialSettings TuningSpace::settingsOf(const Candidate& candidate, const ParameterText& base) const {
  TrialSettings settings;
  std::map<std::string, double> changes;
  for (std::size_t i = 0; i < m_values.size(); ++i) {
    const TunedValue& value = m_values[i];
    if (setLinkArgument(settings.links, value.name, candidate[i])) {
      settings.linkArguments += fmt::format(" {} {}", value.name, candidate[i]);
    } else {
      changes[value.name] = candidate[i];
    }
  }
  if (const auto memory = changes.find(memoryLabel); memory != changes.end()) {
    const auto delay = changes.find(delayLabel);
    memory->second += delay == changes.end() ? base.number(delayLabel) : delay->second;
  }
  settings.parameters = base.with(changes);
  return settings;
}

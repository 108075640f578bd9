#include "host/evaluation/search/TuningSpace.h"

#include "host/base/InputError.h"
#include "host/base/LineReader.h"
#include "host/base/Suggestion.h"
#include "host/people/LinkOptions.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <sstream>

namespace grouptracker {

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
    throw ValueProblem(
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

/// What a value that is tuned may be called.
std::vector<std::string> knownNames(const ParameterFile& base) {
  std::vector<std::string> names;
  for (const ParameterEntry& entry : base.values) {
    names.emplace_back(entry.row->label);
  }
  for (const LinkArgument& argument : linkArguments()) {
    names.emplace_back(argument.name);
  }
  return names;
}

}  // namespace

// Few values, since each more of them is one more way to learn the annotated sequences by heart:
// what only says again what another one says (the weight of the distance, the strength of links
// besides the least reliability) or has no effect on tracks without gaps is not among them. Nor is
// the distance at which pairs are tried: each sequence asks for another one, so that what two of
// them say of it makes a third worse.
TuningSpace TuningSpace::standard(bool byClusters) {
  TuningSpace space;
  if (byClusters) {
    space.m_values = {
        {delayLabel, 3.0, 12.0, Scale::whole},
        {"tolerance:", 0.4, 4.0, Scale::logarithmic},
        {"maxDistGroupMerge:", 0.5, 4.0, Scale::logarithmic},
    };
    return space;
  }
  space.m_values = {
      {"coherenceThreshold:", 1.5, 6.0, Scale::logarithmic},
      {"dirSimWeight:", 4.0, 32.0, Scale::whole},
      {"maxDistGroupUpdate:", 1.5, 4.0, Scale::logarithmic},
      {"--neighbour-radius", 1.0, 5.0, Scale::logarithmic},
      {"--motion-difference", 0.2, 1.0, Scale::logarithmic},
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
    } catch (const ValueProblem& problem) {
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

Candidate TuningSpace::baseOf(const ParameterFile& base) const {
  Candidate candidate;
  for (const TunedValue& value : m_values) {
    double number = 0.0;
    if (!linkArgument(m_links, value.name, number)) {
      if (base.find(value.name) == nullptr) {
        throw InputError(value.name, "neither a parameter nor a link option" +
                                         didYouMean(value.name, knownNames(base)));
      }
      number = base.number(value.name);
      number -= value.name == memoryLabel ? base.number(delayLabel) : 0.0;
    }
    candidate.push_back(atPlace(value, placeOf(value, number)));
  }
  return candidate;
}

TrialSettings TuningSpace::settingsOf(const Candidate& candidate, const ParameterFile& base) const {
  TrialSettings settings;
  settings.links = m_links;
  std::map<std::string, double> changes;
  for (std::size_t i = 0; i < candidate.size(); ++i) {
    const TunedValue& value = m_values[i];
    if (setLinkArgument(settings.links, value.name, candidate[i])) {
      settings.linkArguments += fmt::format(" {} {}", value.name, candidate[i]);
    } else {
      changes[value.name] = candidate[i];
    }
  }
  if (const auto delay = changes.find(delayLabel); delay != changes.end()) {
    const auto memory =
        changes.try_emplace(memoryLabel, base.number(memoryLabel) - base.number(delayLabel));
    memory.first->second += delay->second;
  } else if (const auto memory = changes.find(memoryLabel); memory != changes.end()) {
    memory->second += base.number(delayLabel);
  }
  settings.parameters = base.with(changes);
  return settings;
}

}  // namespace grouptracker

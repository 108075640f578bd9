#include "host/commands/check/ParameterCheck.h"

#include "host/base/LineReader.h"
#include "host/base/TextNumbers.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <sstream>
#include <stdexcept>

namespace grouptracker {

namespace {

struct SensibleRange {
  const char* label;
  double lowest;
  double highest;
};

constexpr double farForAGroup = 20.0;  // m

const std::array<SensibleRange, 22> ranges{{
    {"coherenceThreshold:", 0.0, 1000.0},
    {"distWeight:", 0, 1000},
    {"speedSimWeight:", 0, 1000},
    {"dirSimWeight:", 0, 1000},
    {"distanceThreshold:", 0.05, farForAGroup},
    {"speedSimThreshold:", 0.0, 50.0},
    {"reliabilityThreshold:", 0.0, 1.0},
    {"temporalWinSize:", 1, 1000},
    {"temporalWinForRemoval:", 1, 10000},
    {"recentLinkWeight:", 0.0, 10.0},
    {"maxDistGroupCreation:", 0.05, farForAGroup},
    {"maxDistGroupMerge:", 0.05, farForAGroup},
    {"maxDistGroupUpdate:", 0.05, farForAGroup},
    {"tolerance:", 0.0, 1000.0},
    {"minReliabilityBest:", 0.0, 1.0},
    {"minReliabilityOthers:", 0.0, 1.0},
    {"histogramDepth:", 1, 256},
    {"personWidth:", 0.1, 3.0},
    {"personDepth:", 0.1, 3.0},
    {"personHeight:", 0.5, 3.0},
    {"trajectoryLength:", 0, 10000},
    {"firstImage:", 0, 1e9},
}};

void checkRange(const SensibleRange& range, double value, const std::string& place,
                CheckReport& report) {
  if (value < range.lowest || value > range.highest) {
    report.warn(range.label, place,
                fmt::format("{} {:g} is outside of the usual {:g} to {:g}", range.label, value,
                            range.lowest, range.highest));
  }
}

/// The numbers by label, and where they stand.
struct Entry {
  double value = 0.0;
  std::string place;
};

std::map<std::string, Entry> readEntries(std::istream& in, const std::string& name) {
  std::map<std::string, Entry> entries;
  LineReader lines(in, name);
  std::string label;
  while (lines.nextFilled()) {
    std::istringstream tokens(lines.line());
    for (std::string token; tokens >> token;) {
      if (token.ends_with(':')) {
        label = token;
        continue;
      }
      try {
        entries[label] = {parseNumber(token), lines.place()};
      } catch (const std::invalid_argument&) {
        continue;  // a text, for which there is no range
      }
    }
  }
  return entries;
}

}  // namespace

void checkParameterValues(std::istream& in, const std::string& name, CheckReport& report) {
  const auto entries = readEntries(in, name);
  for (const SensibleRange& range : ranges) {
    const auto entry = entries.find(range.label);
    if (entry != entries.end()) {
      checkRange(range, entry->second.value, entry->second.place, report);
    }
  }
  const auto window = entries.find("temporalWinSize:");
  const auto removal = entries.find("temporalWinForRemoval:");
  if (window != entries.end() && removal != entries.end() &&
      removal->second.value <= window->second.value) {
    report.warn(
        "windows", removal->second.place,
        "temporalWinForRemoval: is not longer than temporalWinSize:, so people are forgotten "
        "before they are decided on");
  }
}

}  // namespace grouptracker

#include "host/grouping/FrameGroupsWriter.h"

#include "host/base/PersonNames.h"

#include <cmath>

namespace grouptracker {

namespace {

using json_line::append;
using json_line::appendArray;
using json_line::appendNumbers;
using json_line::appendPersons;
using json_line::Line;

constexpr double perMetre = 1e4;
constexpr double perSecond = 1e6;
constexpr double perCertainty = 1e4;

/// Rounded to a part of the unit, so that lines stay short and do not depend on the last bits.
std::string rounded(double value, double parts) {
  const double whole = std::round(value * parts);
  return jsonNumber(whole == 0.0 ? 0.0 : whole / parts);
}

std::string numberOrNull(const std::optional<double>& value, double parts) {
  return value ? rounded(*value, parts) : "null";
}

void appendGroup(Line& line, const FoundGroup& group) {
  append(line, R"({{"id": {}, "members": )", group.id);
  appendPersons(line, group.members);
  append(line, R"(, "since": {}, "position": [{}, {}], "confidence": {})", group.since,
         rounded(group.position.x, perMetre), rounded(group.position.y, perMetre),
         rounded(group.confidence, perCertainty));
  if (!group.from.empty()) {
    append(line, R"(, "from": )");
    appendNumbers(line, group.from);
  }
  append(line, "}}");
}

}  // namespace

std::string toLine(const FrameGroups& frame) {
  Line line;
  append(line, R"({{"frame": {}, "time": {}, "groups": )", frame.frame,
         numberOrNull(frame.time, perSecond));
  appendArray(line, frame.groups, [&line](const FoundGroup& group) { appendGroup(line, group); });
  append(line, R"(, "alone": )");
  appendPersons(line, frame.alone);
  append(line, "}}\n");
  return {line.data(), line.size()};
}

}  // namespace grouptracker

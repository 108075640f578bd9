#include "host/grouping/FrameGroupsWriter.h"

#include "host/base/PersonNames.h"

namespace grouptracker {

namespace {

using json_line::appendArray;
using json_line::appendNumbers;
using json_line::appendParts;
using json_line::appendPersons;
using json_line::appendRounded;
using json_line::Line;

constexpr unsigned placeDecimals = 4;
constexpr unsigned timeDecimals = 6;
constexpr unsigned confidenceDecimals = 4;

void appendGroup(Line& line, const FoundGroup& group) {
  appendParts(line, R"({"id": )", group.id, R"(, "members": )");
  appendPersons(line, group.members);
  appendParts(line, R"(, "since": )", group.since, R"(, "position": [)");
  appendRounded(line, group.position.x, placeDecimals);
  appendParts(line, ", ");
  appendRounded(line, group.position.y, placeDecimals);
  appendParts(line, R"(], "confidence": )");
  appendRounded(line, group.confidence, confidenceDecimals);
  if (!group.from.empty()) {
    appendParts(line, R"(, "from": )");
    appendNumbers(line, group.from);
  }
  appendParts(line, "}");
}

}  // namespace

void appendLine(Line& line, const FrameGroups& frame) {
  appendParts(line, R"({"frame": )", frame.frame, R"(, "time": )");
  frame.time ? appendRounded(line, *frame.time, timeDecimals) : appendParts(line, "null");
  appendParts(line, R"(, "groups": )");
  appendArray(line, frame.groups, [&line](const FoundGroup& group) { appendGroup(line, group); });
  appendParts(line, R"(, "alone": )");
  appendPersons(line, frame.alone);
  appendParts(line, "}\n");
}

std::string toLine(const FrameGroups& frame) {
  Line line;
  appendLine(line, frame);
  return {line.data(), line.size()};
}

}  // namespace grouptracker

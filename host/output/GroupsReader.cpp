#include "host/output/GroupsReader.h"

#include "host/base/InputError.h"
#include "host/base/JsonAccess.h"

#include <array>
#include <stdexcept>
#include <utility>

namespace grouptracker {

namespace {

using json::Value;

Value member(simdjson::dom::object object, const char* key) {
  Value value;
  if (object[key].get(value) != simdjson::SUCCESS) {
    throw json::problem("\"" + std::string(key) + "\" is missing");
  }
  return value;
}

std::optional<Value> find(simdjson::dom::object object, const char* key) {
  Value value;
  return object[key].get(value) == simdjson::SUCCESS ? std::optional(value) : std::nullopt;
}

template <typename Number>
std::optional<Number> asOptional(Value value, const char* name) {
  return value.is_null() ? std::nullopt : std::optional(json::as<Number>(value, name));
}

std::vector<GroupMember> readMembers(simdjson::dom::object group) {
  std::vector<std::uint32_t> mobiles;
  std::vector<std::optional<std::uint32_t>> persons;
  json::readArray(
      member(group, "mobiles"), "mobiles",
      [](Value id) { return json::as<std::uint32_t>(id, "a mobile"); }, mobiles);
  json::readArray(
      member(group, "persons"), "persons",
      [](Value id) { return asOptional<std::uint32_t>(id, "a person"); }, persons);
  if (mobiles.size() != persons.size()) {
    throw json::problem("mobiles and persons must be of one length");
  }
  std::vector<GroupMember> members;
  for (std::size_t i = 0; i < mobiles.size(); ++i) {
    members.push_back({mobiles[i], persons[i], std::nullopt});
  }
  return members;
}

/// Positions that are not finite are written as null and read as no position.
std::optional<cv::Point2f> readPosition(Value value) {
  std::vector<std::optional<float>> numbers;
  json::readArray(
      value, "position", [](Value n) { return asOptional<float>(n, "a coordinate"); }, numbers);
  if (numbers.size() != 3) {
    throw json::problem("position must be an array of 3 numbers");
  }
  return numbers[0] && numbers[1] ? std::optional(cv::Point2f(*numbers[0], *numbers[1]))
                                  : std::nullopt;
}

void readProperties(simdjson::dom::object properties, GroupState& group) {
  if (const auto visible = find(properties, "Visible")) {
    bool value = false;
    group.isVisible = visible->get(value) == simdjson::SUCCESS && value;
  }
  if (const auto merge = find(properties, "Merge")) {
    group.merge = json::as<std::int64_t>(*merge, "Merge");
  }
  if (const auto split = find(properties, "Split")) {
    group.split = json::as<std::int64_t>(*split, "Split");
  }
}

GroupState readGroup(Value value) {
  const auto object = json::asObject(value, "a group");
  GroupState group;
  group.id = json::as<std::uint32_t>(member(object, "id"), "id");
  group.members = readMembers(object);
  if (const auto position = find(object, "position")) {
    group.position = readPosition(*position);
  }
  if (const auto box = find(object, "box2d")) {
    const auto numbers = json::asNumbers<int, 4>(*box, "box2d");
    group.box2D = cv::Rect(numbers[0], numbers[1], numbers[2], numbers[3]);
  }
  readProperties(json::asObject(member(object, "properties"), "properties"), group);
  return group;
}

GroupsFrame readFrame(Value value) {
  const auto object = json::asObject(value, "the line");
  GroupsFrame frame;
  frame.frame = json::as<std::uint32_t>(member(object, "frame"), "frame");
  frame.reportedFrame = json::as<std::int32_t>(member(object, "reportedFrame"), "reportedFrame");
  frame.inputFrame = asOptional<std::int64_t>(member(object, "inputFrame"), "inputFrame");
  json::readArray(
      member(object, "persons"), "persons",
      [](Value id) { return json::as<std::uint32_t>(id, "a person"); }, frame.persons);
  json::readArray(member(object, "groups"), "groups", readGroup, frame.groups);
  return frame;
}

}  // namespace

bool GroupsReader::next(GroupsFrame& frame) {
  if (!m_lines.nextFilled()) {
    return false;
  }
  try {
    frame = readFrame(json::parse(m_parser, m_lines.line()));
  } catch (const ValueProblem& problem) {
    throw m_lines.error(problem.what());
  }
  return true;
}

}  // namespace grouptracker

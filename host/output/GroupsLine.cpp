#include "host/output/GroupsLine.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace grouptracker {

namespace {

using json::Value;

std::vector<std::uint32_t> idsOf(const RunGroup& group) {
  std::vector<std::uint32_t> ids;
  for (const RunMember& member : group.members) {
    ids.push_back(member.person.value_or(0));
  }
  return ids;
}

std::optional<Value> find(simdjson::dom::object object, const char* key) {
  Value value;
  return object[key].get(value) == simdjson::SUCCESS ? std::optional(value) : std::nullopt;
}

Value require(simdjson::dom::object object, const char* key) {
  auto value = find(object, key);
  return json::required(value, key);
}

std::vector<std::uint32_t> idsIn(Value list, const char* name, const char* each) {
  std::vector<std::uint32_t> ids;
  json::readArray(
      list, name, [each](Value id) { return json::as<std::uint32_t>(id, each); }, ids);
  return ids;
}

std::vector<std::uint32_t> personsIn(Value list, const char* name, const char* each) {
  std::vector<std::uint32_t> persons;
  json::readArray(
      list, name, [each](Value id) { return json::asPerson(id, each); }, persons);
  return persons;
}

void readDetails(simdjson::dom::object object, RunGroup& group) {
  group.since = json::as<std::int64_t>(require(object, "since"), "since");
  const auto [x, y] = json::asNumbers<float, 2>(require(object, "position"), "position");
  group.position = cv::Point3f(x, y, 0.0F);
  group.confidence = json::as<double>(require(object, "confidence"), "confidence");
}

RunGroup groupIn(Value value, bool isWhole) {
  const auto object = json::asObject(value, "a group");
  RunGroup group;
  group.isVisible = true;
  group.id = json::as<std::uint32_t>(require(object, "id"), "id");
  std::vector<std::uint32_t> members = personsIn(require(object, "members"), "members", "a member");
  std::sort(members.begin(), members.end());
  for (const std::uint32_t person : members) {
    group.members.push_back({{}, person, {}});
  }
  if (isWhole) {
    readDetails(object, group);
  }
  if (const auto from = find(object, "from")) {
    group.from = idsIn(*from, "from", "a group");
  }
  return group;
}

}  // namespace

bool groups_line::isOne(simdjson::dom::object line) {
  return find(line, "alone").has_value();
}

bool groups_line::isHeader(simdjson::dom::object line) {
  return find(line, "header").has_value() && !find(line, "frame");
}

RunStep groups_line::parse(simdjson::dom::object line, bool isWhole) {
  RunStep step;
  step.source = GroupSource::evidence;
  step.inputFrame = json::as<std::int64_t>(require(line, "frame"), "frame");
  const auto time = isWhole ? require(line, "time") : find(line, "time");
  if (time && !time->is_null()) {
    step.time = json::as<double>(*time, "time");
  }
  json::readArray(
      require(line, "groups"), "groups", [isWhole](Value item) { return groupIn(item, isWhole); },
      step.groups);
  std::set<std::uint32_t> persons;
  for (const std::uint32_t person : personsIn(require(line, "alone"), "alone", "a person")) {
    persons.insert(person);
  }
  for (const RunGroup& group : step.groups) {
    const auto members = idsOf(group);
    persons.insert(members.begin(), members.end());
  }
  for (const std::uint32_t person : persons) {
    step.persons.push_back({person, {}});
  }
  return step;
}

}  // namespace grouptracker

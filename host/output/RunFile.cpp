#include "host/output/RunFile.h"

#include "host/base/InputError.h"
#include "host/base/JsonAccess.h"
#include "host/base/PersonNames.h"
#include "host/grouping/FrameGroupsWriter.h"
#include "host/output/GroupsLine.h"
#include "host/run/GroupRun.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace grouptracker {

namespace {

using json::Value;
using json_line::appendArray;
using json_line::appendNumber;
using json_line::appendNumbers;
using json_line::appendParts;
using json_line::appendPerson;
using json_line::appendText;
using json_line::Line;

void appendProperty(Line& line, const PropertyValue& value) {
  struct Append {
    Line& line;

    void operator()(std::monostate) const { appendParts(line, "null"); }
    void operator()(bool truth) const { appendParts(line, truth ? "true" : "false"); }
    void operator()(std::int64_t number) const { appendNumber(line, number); }
    void operator()(std::uint64_t number) const { appendNumber(line, number); }
    void operator()(double number) const { appendNumber(line, number); }
    void operator()(const std::string& text) const { appendText(line, text); }
  };
  std::visit(Append{line}, value);
}

void appendExtent(Line& line, const RunGroup& group) {
  if (const auto& at = group.position) {
    appendParts(line, R"("position": )");
    appendNumbers(line, std::array{at->x, at->y, at->z});
    appendParts(line, ", ");
  }
  if (const auto& box = group.box2D) {
    appendParts(line, R"("box2d": )");
    appendNumbers(line, std::array{box->x, box->y, box->width, box->height});
    appendParts(line, ", ");
  }
  if (group.box3D) {
    appendParts(line, R"("box3d": )");
    appendNumbers(line, *group.box3D);
    appendParts(line, ", ");
  }
}

void appendGroup(Line& line, const RunGroup& group) {
  appendParts(line, R"({"id": )", group.id, R"(, "mobiles": )");
  appendArray(line, group.members,
              [&](const auto& member) { appendNumber(line, member.mobile.value_or(0)); });
  appendParts(line, R"(, "persons": )");
  appendArray(line, group.members, [&](const auto& member) {
    member.person ? appendPerson(line, *member.person) : appendParts(line, "null");
  });
  appendParts(line, ", ");
  appendExtent(line, group);
  appendParts(line, R"("properties": {)");
  const char* separator = "";
  for (const auto& [name, value] : group.properties) {
    appendParts(line, separator);
    appendText(line, name);
    appendParts(line, ": ");
    appendProperty(line, value);
    separator = ", ";
  }
  appendParts(line, "}}");
}

void appendActors(Line& line, const RunStep& step) {
  appendParts(line, R"({"frame": )", step.frame, R"(, "reportedFrame": )", step.reportedFrame,
              R"(, "inputFrame": )");
  step.inputFrame ? appendNumber(line, *step.inputFrame) : appendParts(line, "null");
  appendParts(line, R"(, "persons": )");
  appendArray(line, step.persons, [&line](const auto& person) { appendPerson(line, person.id); });
  appendParts(line, R"(, "groups": )");
  appendArray(line, step.groups, [&line](const auto& group) { appendGroup(line, group); });
  appendParts(line, "}\n");
}

}  // namespace

void RunFileWriter::write(const RunStep& step) {
  m_line.clear();
  step.source == GroupSource::evidence ? appendLine(m_line, toFrameGroups(step))
                                       : appendActors(m_line, step);
  m_file.writeLines({m_line.data(), m_line.size()});
}

std::string actorsLine(const RunStep& step) {
  Line line;
  appendActors(line, step);
  return {line.data(), line.size()};
}

namespace {

template <typename Number>
std::optional<Number> asOptional(Value value, const char* name) {
  return value.is_null() ? std::nullopt : std::optional(json::as<Number>(value, name));
}

std::optional<std::uint32_t> asPerson(Value value) {
  return value.is_null() ? std::nullopt : std::optional(json::asPerson(value, "a person"));
}

/// An array of single-precision numbers in which null stands for what is not finite.
template <std::size_t count>
std::array<float, count> asFloats(Value value, const std::string& name, const char* each) {
  std::vector<float> items;
  json::readArray(
      value, name.c_str(),
      [each](Value item) {
        return asOptional<float>(item, each).value_or(std::numeric_limits<float>::quiet_NaN());
      },
      items);
  if (items.size() != count) {
    throw json::problem(name + " must be an array of " + std::to_string(count) + " numbers");
  }
  std::array<float, count> numbers{};
  std::copy(items.begin(), items.end(), numbers.begin());
  return numbers;
}

PropertyValue asProperty(Value value) {
  switch (value.type()) {
    case simdjson::dom::element_type::BOOL:
      return value.get_bool().value_unsafe();
    case simdjson::dom::element_type::INT64:
      return value.get_int64().value_unsafe();
    case simdjson::dom::element_type::UINT64:
      return value.get_uint64().value_unsafe();
    case simdjson::dom::element_type::DOUBLE:
      return value.get_double().value_unsafe();
    case simdjson::dom::element_type::STRING:
      return std::string(value.get_string().value_unsafe());
    default:
      return {};  // no property of a group is a list or an object
  }
}

/// Reads one line, or of it what a part of the file needs.
class LineParser {
 public:
  explicit LineParser(RunFilePart part) : m_isWhole(part == RunFilePart::whole) {}

  RunStep step(simdjson::dom::object object) const;

 private:
  /// The value of a key; one that is missing is a problem if the whole file is wanted.
  std::optional<Value> find(simdjson::dom::object object, const char* key) const;
  RunGroup group(Value value) const;
  std::vector<RunMember> members(simdjson::dom::object group) const;
  void readExtent(simdjson::dom::object object, RunGroup& group) const;
  void readProperties(simdjson::dom::object properties, RunGroup& group) const;

  bool m_isWhole;
};

std::optional<Value> optionalValue(simdjson::dom::object object, const char* key) {
  Value value;
  return object[key].get(value) == simdjson::SUCCESS ? std::optional(value) : std::nullopt;
}

std::optional<Value> LineParser::find(simdjson::dom::object object, const char* key) const {
  auto value = optionalValue(object, key);
  return m_isWhole ? json::required(value, key) : value;
}

RunStep LineParser::step(simdjson::dom::object object) const {
  RunStep step;
  if (const auto frame = find(object, "frame"); frame && m_isWhole) {
    step.frame = json::as<std::uint32_t>(*frame, "frame");
  }
  if (const auto frame = find(object, "reportedFrame"); frame && m_isWhole) {
    step.reportedFrame = json::as<std::int32_t>(*frame, "reportedFrame");
  }
  if (const auto frame = find(object, "inputFrame")) {
    step.inputFrame = asOptional<std::int64_t>(*frame, "inputFrame");
  }
  if (const auto persons = find(object, "persons")) {
    const auto read = [](Value id) { return RunPerson{json::asPerson(id, "a person"), {}}; };
    json::readArray(*persons, "persons", read, step.persons);
  }
  if (const auto groups = find(object, "groups")) {
    json::readArray(
        *groups, "groups", [this](Value item) { return group(item); }, step.groups);
  }
  return step;
}

RunGroup LineParser::group(Value value) const {
  const auto object = json::asObject(value, "a group");
  RunGroup group;
  if (const auto id = find(object, "id")) {
    group.id = json::as<std::uint32_t>(*id, "id");
  }
  group.members = members(object);
  if (m_isWhole) {
    readExtent(object, group);
  }
  if (const auto properties = find(object, "properties")) {
    readProperties(json::asObject(*properties, "properties"), group);
  }
  return group;
}

std::vector<RunMember> LineParser::members(simdjson::dom::object group) const {
  std::vector<std::uint32_t> mobiles;
  std::vector<std::optional<std::uint32_t>> persons;
  if (const auto list = find(group, "mobiles"); list && m_isWhole) {
    json::readArray(
        *list, "mobiles", [](Value id) { return json::as<std::uint32_t>(id, "a mobile"); },
        mobiles);
  }
  if (const auto list = find(group, "persons")) {
    json::readArray(*list, "persons", asPerson, persons);
  }
  if (m_isWhole && mobiles.size() != persons.size()) {
    throw json::problem("mobiles and persons must be of one length");
  }
  std::vector<RunMember> members(persons.size());
  for (std::size_t i = 0; i < persons.size(); ++i) {
    members[i].mobile = m_isWhole ? std::optional(mobiles[i]) : std::nullopt;
    members[i].person = persons[i];
  }
  return members;
}

void LineParser::readExtent(simdjson::dom::object object, RunGroup& group) const {
  if (const auto position = optionalValue(object, "position")) {
    const auto [x, y, z] = asFloats<3>(*position, "position", "a coordinate");
    group.position = cv::Point3f(x, y, z);
  }
  if (const auto box = optionalValue(object, "box2d")) {
    const auto [x, y, width, height] = json::asNumbers<int, 4>(*box, "box2d");
    group.box2D = cv::Rect(x, y, width, height);
  }
  if (const auto box = optionalValue(object, "box3d")) {
    group.box3D = asFloats<6>(*box, "box3d", "a coordinate");
  }
}

void LineParser::readProperties(simdjson::dom::object properties, RunGroup& group) const {
  for (const char* const number : {"Merge", "Split"}) {
    if (const auto value = optionalValue(properties, number)) {
      json::as<std::int64_t>(*value, number);
    }
  }
  for (const auto [name, value] : properties) {
    group.properties.push_back({std::string(name), asProperty(value)});
  }
  group.decodeProperties();
}

}  // namespace

bool RunFileReader::next(RunStep& step) {
  while (m_lines.nextFilled()) {
    try {
      const auto line = json::asObject(json::parse(m_parser, m_lines.line()), "the line");
      if (!groups_line::isHeader(line)) {
        step = parse(line);
        return true;
      }
    } catch (const ValueProblem& problem) {
      throw m_lines.error(problem.what());
    }
  }
  return false;
}

RunStep RunFileReader::parse(simdjson::dom::object line) {
  if (!groups_line::isOne(line)) {
    return LineParser(m_part).step(line);
  }
  RunStep step = groups_line::parse(line, m_part == RunFilePart::whole);
  step.frame = ++m_frames;
  step.reportedFrame = static_cast<std::int32_t>(m_frames);
  return step;
}

}  // namespace grouptracker

#include "TruthReader.h"

#include "InputFile.h"
#include "JsonAccess.h"
#include "LineReader.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <string_view>

namespace {

constexpr std::string_view separators = " \t,;\r";

/// The persons on a line; none when a piece of it is no person's number.
std::optional<PersonGroup> parsePersons(std::string_view line) {
  PersonGroup persons;
  for (auto begin = line.find_first_not_of(separators); begin != line.npos;
       begin = line.find_first_not_of(separators, begin)) {
    const auto end = std::min(line.find_first_of(separators, begin), line.size());
    Person person = 0;
    const auto [rest, error] = std::from_chars(line.data() + begin, line.data() + end, person);
    if (error != std::errc() || rest != line.data() + end) {
      return std::nullopt;
    }
    persons.push_back(person);
    begin = end;
  }
  return persons;
}

PersonGroup readPersons(json::Value value) {
  PersonGroup persons;
  json::readArray(
      value, "a group", [](json::Value person) { return json::as<Person>(person, "a person"); },
      persons);
  return persons;
}

PersonGroup readGroup(json::Value value) {
  if (!value.is_object()) {
    return readPersons(value);
  }
  std::optional<PersonGroup> persons;
  for (const auto field : json::asObject(value, "a group")) {
    if (field.key == "persons") {
      persons = readPersons(field.value);
    }
  }
  return json::required(persons, "persons");
}

void addFrame(json::Value line, GroupTruth& truth) {
  std::optional<std::int64_t> frame;
  std::optional<std::vector<PersonGroup>> groups;
  for (const auto field : json::asObject(line, "the line")) {
    if (field.key == "frame") {
      frame = json::as<std::int64_t>(field.value, "frame");
    } else if (field.key == "groups") {
      json::readArray(field.value, "groups", readGroup, groups.emplace());
    }
  }
  truth.setAt(json::required(frame, "frame"), joinOverlapping(json::required(groups, "groups")));
}

}  // namespace

GroupTruth readGroupLists(std::istream& in, const std::string& name) {
  std::vector<PersonGroup> lists;
  LineReader lines(in, name);
  bool isFirst = true;
  while (lines.nextFilled()) {
    auto persons = parsePersons(lines.line());
    if (!persons && !isFirst) {
      throw lines.error("the persons of a group are expected, whole numbers from 0 on");
    }
    isFirst = false;
    if (persons) {
      lists.push_back(*std::move(persons));
    }
  }
  return GroupTruth(joinOverlapping(lists));
}

GroupTruth readGroupsPerFrame(std::istream& in, const std::string& name) {
  GroupTruth truth;
  LineReader lines(in, name);
  simdjson::dom::parser parser;
  while (lines.nextFilled()) {
    try {
      addFrame(json::parse(parser, lines.line()), truth);
    } catch (const std::invalid_argument& problem) {
      throw lines.error(problem.what());
    }
  }
  return truth;
}

GroupTruth readTruth(const std::string& path) {
  InputFile file(path);
  return std::filesystem::path(path).extension() == ".jsonl"
             ? readGroupsPerFrame(file.stream(), path)
             : readGroupLists(file.stream(), path);
}

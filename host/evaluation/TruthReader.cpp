#include "host/evaluation/TruthReader.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/JsonAccess.h"
#include "host/base/LineReader.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <string_view>

namespace grouptracker {

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

/// A header has words only: with a number in it, it is a line of persons with a typing error.
bool isHeader(std::string_view line) {
  return line.find_first_of("0123456789") == line.npos;
}

PersonGroup readPersons(json::Value value) {
  PersonGroup persons;
  json::readArray(
      value, "a group", [](json::Value person) { return json::asPerson(person, "a person"); },
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

/// The identity of each joined group is that of the first list that went into it.
GroupIds idsOf(const Grouping& joined, const std::vector<PersonGroup>& lists, const GroupIds& ids) {
  GroupIds joinedIds;
  for (const PersonGroup& group : joined) {
    for (std::size_t i = 0; i < lists.size(); ++i) {
      if (!lists[i].empty() && std::binary_search(group.begin(), group.end(), lists[i].front())) {
        joinedIds.push_back(ids[i]);
        break;
      }
    }
  }
  return joinedIds;
}

void addFrame(json::Value line, GroupTruth& truth) {
  std::optional<std::int64_t> frame;
  std::optional<std::vector<PersonGroup>> groups;
  std::optional<GroupIds> ids;
  for (const auto field : json::asObject(line, "the line")) {
    if (field.key == "frame") {
      frame = json::as<std::int64_t>(field.value, "frame");
    } else if (field.key == "groups") {
      json::readArray(field.value, "groups", readGroup, groups.emplace());
    } else if (field.key == "ids") {
      json::readArray(
          field.value, "ids",
          [](json::Value id) { return json::as<std::uint32_t>(id, "a group's id"); },
          ids.emplace());
    }
  }
  const auto lists = json::required(groups, "groups");
  if (ids && ids->size() != lists.size()) {
    throw ValueProblem("\"ids\" must have one id for each group");
  }
  Grouping joined = joinOverlapping(lists);
  GroupIds joinedIds = ids ? idsOf(joined, lists, *ids) : GroupIds();
  truth.setAt(json::required(frame, "frame"), std::move(joined), std::move(joinedIds));
}

}  // namespace

GroupTruth readGroupLists(std::istream& in, const std::string& name) {
  std::vector<PersonGroup> lists;
  LineReader lines(in, name);
  bool isFirst = true;
  while (lines.nextFilled()) {
    auto persons = parsePersons(lines.line());
    if (!persons && !(isFirst && isHeader(lines.line()))) {
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
    } catch (const ValueProblem& problem) {
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

}  // namespace grouptracker

#include "host/evaluation/RunRecordReader.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/JsonAccess.h"
#include "host/base/LineReader.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace grouptracker {

namespace {

const char* const visible = "Visible";
const char* const merge = "Merge";
const char* const split = "Split";

void sortUnique(std::vector<Person>& persons) {
  std::sort(persons.begin(), persons.end());
  persons.erase(std::unique(persons.begin(), persons.end()), persons.end());
}

std::vector<Person> readPersons(json::Value value) {
  std::vector<std::optional<Person>> items;
  json::readArray(
      value, "persons",
      [](json::Value item) {
        return item.is_null() ? std::nullopt : std::optional(json::as<Person>(item, "a person"));
      },
      items);
  std::vector<Person> persons;
  for (const auto& item : items) {
    if (item) {
      persons.push_back(*item);
    }
  }
  sortUnique(persons);
  return persons;
}

/// An ended group stays in the output for a while with the text "false".
bool readProperties(json::Value properties, FoundGroup& group) {
  bool isVisible = false;
  for (const auto property : json::asObject(properties, "properties")) {
    if (property.key == visible && property.value.is_bool()) {
      isVisible = property.value.get_bool().value_unsafe();
    } else if (property.key == merge) {
      group.merge = json::as<int>(property.value, merge);
    } else if (property.key == split) {
      group.split = json::as<int>(property.value, split);
    }
  }
  return isVisible;
}

/// None for a group that is not visible or has no person.
std::optional<FoundGroup> readGroup(json::Value value) {
  FoundGroup group;
  bool isVisible = false;
  for (const auto field : json::asObject(value, "a group")) {
    if (field.key == "id") {
      group.id = json::as<std::uint32_t>(field.value, "id");
    } else if (field.key == "persons") {
      group.persons = readPersons(field.value);
    } else if (field.key == "properties") {
      isVisible = readProperties(field.value, group);
    }
  }
  return isVisible && !group.persons.empty() ? std::optional(std::move(group)) : std::nullopt;
}

void addLine(json::Value line, RunRecord& run) {
  FoundStep step;
  std::optional<std::int64_t> frame;
  std::vector<std::optional<FoundGroup>> groups;
  for (const auto field : json::asObject(line, "the line")) {
    if (field.key == "inputFrame" && !field.value.is_null()) {
      frame = json::as<std::int64_t>(field.value, "inputFrame");
    } else if (field.key == "persons") {
      step.persons = readPersons(field.value);
    } else if (field.key == "groups") {
      json::readArray(field.value, "groups", readGroup, groups);
    }
  }
  if (!frame) {
    return;
  }
  step.frame = *frame;
  for (auto& group : groups) {
    if (group) {
      step.groups.push_back(*std::move(group));
    }
  }
  run.push_back(std::move(step));
}

}  // namespace

RunRecord readRunRecord(std::istream& in, const std::string& name) {
  RunRecord run;
  LineReader lines(in, name);
  simdjson::dom::parser parser;
  while (lines.nextFilled()) {
    try {
      addLine(json::parse(parser, lines.line()), run);
    } catch (const ValueProblem& problem) {
      throw lines.error(problem.what());
    }
  }
  return run;
}

RunRecord readRunRecord(const std::string& path) {
  InputFile file(path);
  return readRunRecord(file.stream(), path);
}

void appendReport(const FrameReport& report, RunRecord& run) {
  if (!report.inputFrame) {
    return;
  }
  FoundStep step;
  step.frame = *report.inputFrame;
  step.persons = report.persons;
  sortUnique(step.persons);
  for (const GroupReport& group : report.groups) {
    const auto& properties = group.actor->getSpecificProperties();
    const auto isVisible = properties.value(visible);
    FoundGroup found{group.actor->getIdent(),
                     {},
                     properties.value(merge, -1).toInt(),
                     properties.value(split, -1).toInt()};
    for (const auto& person : group.persons) {
      if (person) {
        found.persons.push_back(*person);
      }
    }
    sortUnique(found.persons);
    if (isVisible.type() == QVariant::Bool && isVisible.toBool() && !found.persons.empty()) {
      step.groups.push_back(std::move(found));
    }
  }
  run.push_back(std::move(step));
}

}  // namespace grouptracker

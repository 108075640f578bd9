#include "host/run/TrackedEvent.h"

#include "host/base/PersonNames.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>

namespace grouptracker {

namespace {

constexpr std::array<const char*, eventKinds> names{"created", "split", "merged", "joined",
                                                    "left",    "ended", "removed"};

void appendParticipants(json_line::Line& line, const TrackedEvent& event) {
  switch (event.kind) {
    case EventKind::created:
      json_line::append(line, R"(, "persons": )");
      json_line::appendPersons(line, event.persons);
      break;
    case EventKind::merged:
      json_line::append(line, R"(, "into": {}, "from": {}, "persons": )", event.group,
                        *event.other);
      json_line::appendPersons(line, event.persons);
      break;
    case EventKind::split:
      json_line::append(line, R"(, "from": {})", *event.other);
      break;
    case EventKind::joined:
    case EventKind::left:
      json_line::append(line, R"(, "person": {})", json_line::person(event.persons.front()));
      break;
    default:
      break;
  }
}

std::string joinedNames(const std::vector<std::uint32_t>& persons) {
  std::vector<std::string> texts;
  for (const std::uint32_t person : persons) {
    texts.push_back(PersonNames::ofProgram().textOf(person));
  }
  return json_line::joined(texts, ", ");
}

}  // namespace

const char* nameOf(EventKind kind) {
  return names[static_cast<std::size_t>(kind)];
}

std::string toJsonLine(const TrackedEvent& event) {
  json_line::Line line;
  json_line::append(line, R"({{"event": "{}", "group": {})", nameOf(event.kind), event.group);
  appendParticipants(line, event);
  json_line::append(line, R"(, "reportedFrame": {}, "inputFrame": {}, "frame": {}}})",
                    event.reportedFrame,
                    event.inputFrame ? fmt::to_string(*event.inputFrame) : "null", event.frame);
  return fmt::to_string(line) + '\n';
}

std::string describe(const TrackedEvent& event) {
  switch (event.kind) {
    case EventKind::created:
      return fmt::format("group {} created: {}", event.group, joinedNames(event.persons));
    case EventKind::merged:
      return fmt::format("group {} merged into {}", *event.other, event.group);
    case EventKind::split:
      return fmt::format("group {} split from {}", event.group, *event.other);
    case EventKind::joined:
    case EventKind::left:
      return fmt::format("{} {} group {}", PersonNames::ofProgram().textOf(event.persons.front()),
                         nameOf(event.kind), event.group);
    default:
      return fmt::format("group {} {}", event.group, nameOf(event.kind));
  }
}

}  // namespace grouptracker

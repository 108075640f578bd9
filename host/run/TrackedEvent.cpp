#include "host/run/TrackedEvent.h"

#include "host/base/JsonLine.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>

namespace grouptracker {

namespace {

constexpr std::array<const char*, eventKinds> names{"created", "split", "merged", "joined",
                                                    "left",    "ended", "removed"};

std::string participants(const TrackedEvent& event) {
  switch (event.kind) {
    case EventKind::created:
      return fmt::format(R"(, "persons": [{}])", json_line::joined(event.persons, ", "));
    case EventKind::merged:
      return fmt::format(R"(, "into": {}, "from": {}, "persons": [{}])", event.group, *event.other,
                         json_line::joined(event.persons, ", "));
    case EventKind::split:
      return fmt::format(R"(, "from": {})", *event.other);
    case EventKind::joined:
    case EventKind::left:
      return fmt::format(R"(, "person": {})", event.persons.front());
    default:
      return {};
  }
}

}  // namespace

const char* nameOf(EventKind kind) {
  return names[static_cast<std::size_t>(kind)];
}

std::string toJsonLine(const TrackedEvent& event) {
  const std::string inputFrame = event.inputFrame ? fmt::to_string(*event.inputFrame) : "null";
  return fmt::format(
      "{{\"event\": \"{}\", \"group\": {}{}, \"reportedFrame\": {}, \"inputFrame\": {}, "
      "\"frame\": {}}}\n",
      nameOf(event.kind), event.group, participants(event), event.reportedFrame, inputFrame,
      event.frame);
}

std::string describe(const TrackedEvent& event) {
  switch (event.kind) {
    case EventKind::created:
      return fmt::format("group {} created: {}", event.group,
                         json_line::joined(event.persons, ", "));
    case EventKind::merged:
      return fmt::format("group {} merged into {}", *event.other, event.group);
    case EventKind::split:
      return fmt::format("group {} split from {}", event.group, *event.other);
    case EventKind::joined:
    case EventKind::left:
      return fmt::format("{} {} group {}", event.persons.front(), nameOf(event.kind), event.group);
    default:
      return fmt::format("group {} {}", event.group, nameOf(event.kind));
  }
}

}  // namespace grouptracker

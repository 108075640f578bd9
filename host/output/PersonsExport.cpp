#include "host/output/PersonsExport.h"

#include "host/base/PersonNames.h"

#include <fmt/format.h>

#include <map>
#include <optional>

namespace grouptracker {

namespace {

/// A field, empty where nothing is known.
template <typename Value>
std::string field(const std::optional<Value>& value) {
  return value ? fmt::format("{}", *value) : std::string();
}

std::map<std::uint32_t, std::uint32_t> groupsOfPersons(const RunStep& step) {
  std::map<std::uint32_t, std::uint32_t> groups;
  for (const RunGroup& group : step.groups) {
    for (const RunMember& member : group.members) {
      if (group.isVisible && member.person) {
        groups.emplace(*member.person, group.id);
      }
    }
  }
  return groups;
}

std::string placeOf(const RunPerson& person) {
  return person.seen ? fmt::format("{},{}", person.seen->ground.x, person.seen->ground.y) : ",";
}

std::string boxOf(const RunPerson& person) {
  if (!person.seen || person.seen->box2D.empty()) {
    return ",,,";
  }
  const cv::Rect& box = person.seen->box2D;
  return fmt::format("{},{},{},{}", box.x, box.y, box.width, box.height);
}

}  // namespace

PersonsExport::PersonsExport(const std::string& path)
    : m_file(path, "frame,time,person,x,y,left,top,width,height,group\n") {}

void PersonsExport::write(const RunStep& step) {
  if (!step.inputFrame) {
    return;
  }
  const auto groups = groupsOfPersons(step);
  std::string lines;
  for (const RunPerson& person : step.persons) {
    const auto group = groups.find(person.id);
    lines +=
        fmt::format("{},{},{},{},{},{}\n", *step.inputFrame, field(step.time),
                    PersonNames::ofProgram().fieldOf(person.id), placeOf(person), boxOf(person),
                    group == groups.end() ? "" : fmt::format("{}", group->second));
  }
  m_file.writeLines(lines);
}

}  // namespace grouptracker

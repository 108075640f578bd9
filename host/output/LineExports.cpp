#include "host/output/LineExports.h"

#include "host/base/PersonNames.h"

#include <fmt/format.h>

#include <string>

namespace grouptracker {

namespace {

const cv::Rect unknown(-1, -1, -1, -1);

}  // namespace

CsvExport::CsvExport(const std::string& path) : m_file(path, "frame,group,person,x,y,time\n") {}

void CsvExport::write(const RunStep& step) {
  if (!step.inputFrame) {
    return;
  }
  const std::string time = step.time ? fmt::format("{}", *step.time) : "";
  std::string lines;
  for (const RunGroup& group : step.groups) {
    if (!group.isVisible) {
      continue;
    }
    for (const RunMember& member : group.members) {
      lines += fmt::format("{},{},", *step.inputFrame, group.id);
      lines += member.person ? PersonNames::ofProgram().fieldOf(*member.person) : "";
      lines += member.place ? fmt::format(",{},{}", member.place->x, member.place->y) : ",,";
      lines += fmt::format(",{}\n", time);
    }
  }
  m_file.writeLines(lines);
}

void MotExport::write(const RunStep& step) {
  if (!step.inputFrame) {
    return;
  }
  const std::uint64_t first = step.source == GroupSource::process ? 1 : 0;
  std::string lines;
  for (const RunGroup& group : step.groups) {
    if (group.isVisible && group.position) {
      const cv::Rect box = group.box2D.value_or(unknown);
      lines += fmt::format("{},{},{},{},{},{},{},{},{},0\n", *step.inputFrame, group.id + first,
                           box.x, box.y, box.width, box.height, group.confidence.value_or(1.0),
                           group.position->x, group.position->y);
    }
  }
  m_file.writeLines(lines);
}

void EventWriter::write(const RunStep& step) {
  for (const TrackedEvent& event : step.events) {
    m_file.writeLines(toJsonLine(event));
  }
}

}  // namespace grouptracker

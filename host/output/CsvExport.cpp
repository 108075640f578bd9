#include "host/output/CsvExport.h"

#include <fmt/format.h>

#include <string>

namespace grouptracker {

CsvExport::CsvExport(const std::string& path) : m_file(path) {
  m_file.writeLines("frame,group,person,x,y,time\n");
}

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
      lines += member.person ? fmt::format("{}", *member.person) : "";
      lines += member.place ? fmt::format(",{},{}", member.place->x, member.place->y) : ",,";
      lines += fmt::format(",{}\n", time);
    }
  }
  m_file.writeLines(lines);
}

}  // namespace grouptracker

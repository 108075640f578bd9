#include "host/output/CsvExport.h"

#include <fmt/format.h>

#include <iterator>

namespace grouptracker {

CsvExport::CsvExport(const std::string& path) : m_file(path) {
  m_file.writeLines("frame,group,person,x,y\n");
}

void CsvExport::write(const ReportedStep& step) {
  if (!step.groups.inputFrame) {
    return;
  }
  fmt::memory_buffer lines;
  const auto out = std::back_inserter(lines);
  for (const GroupState& group : step.groups.groups) {
    if (!group.isVisible) {
      continue;
    }
    for (const GroupMember& member : group.members) {
      fmt::format_to(out, "{},{},", *step.groups.inputFrame, group.id);
      member.person ? fmt::format_to(out, "{}", *member.person) : out;
      member.place ? fmt::format_to(out, ",{},{}\n", member.place->x, member.place->y)
                   : fmt::format_to(out, ",,\n");
    }
  }
  m_file.writeLines({lines.data(), lines.size()});
}

}  // namespace grouptracker

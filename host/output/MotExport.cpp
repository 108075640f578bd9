#include "host/output/MotExport.h"

#include <fmt/format.h>

#include <iterator>

namespace grouptracker {

void MotExport::write(const ReportedStep& step) {
  if (!step.groups.inputFrame) {
    return;
  }
  fmt::memory_buffer lines;
  for (const GroupState& group : step.groups.groups) {
    if (group.isVisible && group.box2D && group.position) {
      fmt::format_to(std::back_inserter(lines), "{},{},{},{},{},{},1,{},{},0\n",
                     *step.groups.inputFrame, group.id, group.box2D->x, group.box2D->y,
                     group.box2D->width, group.box2D->height, group.position->x, group.position->y);
    }
  }
  m_file.writeLines({lines.data(), lines.size()});
}

}  // namespace grouptracker

#include "host/output/MotExport.h"

#include <fmt/format.h>

#include <string>

namespace grouptracker {

void MotExport::write(const RunStep& step) {
  if (!step.inputFrame) {
    return;
  }
  std::string lines;
  for (const RunGroup& group : step.groups) {
    if (group.isVisible && group.box2D && group.position) {
      lines += fmt::format("{},{},{},{},{},{},1,{},{},0\n", *step.inputFrame, group.id,
                           group.box2D->x, group.box2D->y, group.box2D->width, group.box2D->height,
                           group.position->x, group.position->y);
    }
  }
  m_file.writeLines(lines);
}

}  // namespace grouptracker

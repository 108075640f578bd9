#include "host/output/MotExport.h"

#include <fmt/format.h>

#include <string>

namespace grouptracker {

namespace {

const cv::Rect unknown(-1, -1, -1, -1);

}  // namespace

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

}  // namespace grouptracker

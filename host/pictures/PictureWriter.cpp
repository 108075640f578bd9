#include "host/pictures/PictureWriter.h"

#include "host/pictures/VideoFile.h"

#include <algorithm>

namespace grouptracker {

PictureWriter::PictureWriter(const PictureOptions& options) : m_painter(options.showsTopView) {
  if (!options.path.empty()) {
    m_targets.push_back(std::make_shared<VideoFile>(options.path, options.rate));
  }
  if (options.screen) {
    m_targets.push_back(options.screen);
  }
}

void PictureWriter::write(const RunStep& step) {
  const bool isWanted = std::any_of(m_targets.begin(), m_targets.end(),
                                    [](const auto& target) { return target->wantsMore(); });
  if (!step.inputFrame || !isWanted) {
    return;
  }
  const cv::Mat picture = m_painter.paint(step);
  for (const auto& target : m_targets) {
    target->add(picture, step.reportedFrame);
  }
}

void PictureWriter::finish() {
  for (const auto& target : m_targets) {
    target->finish();
  }
}

}  // namespace grouptracker

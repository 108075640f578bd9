#include "host/pictures/PictureWriter.h"

#include "host/base/FirstFailure.h"
#include "host/base/OutputPlace.h"
#include "host/pictures/BackgroundTarget.h"
#include "host/pictures/VideoFile.h"

#include <algorithm>
#include <system_error>

namespace grouptracker {

PictureWriter::PictureWriter(const PictureOptions& options)
    : m_path(options.path), m_painter(options.showsTopView) {
  if (!options.path.empty()) {
    m_targets.push_back(std::make_shared<BackgroundTarget>(
        std::make_unique<VideoFile>(options.path, options.rate)));
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
  refuseImagesOfInput(step);
  const cv::Mat picture = m_painter.paint(step);
  for (const auto& target : m_targets) {
    target->add(picture, step.reportedFrame);
  }
}

void PictureWriter::refuseImagesOfInput(const RunStep& step) {
  const std::filesystem::path folder = step.imageFile.parent_path();
  if (m_path.empty() || step.imageFile.empty() || folder == m_knownFolder) {
    return;
  }
  m_knownFolder = folder;
  std::error_code isMissing;
  if (std::filesystem::equivalent(folder.empty() ? "." : folder, m_path, isMissing)) {
    throw OutputError(m_path, "would overwrite the images of the input");
  }
}

void PictureWriter::finish() {
  FirstFailure failure;
  for (const auto& target : m_targets) {
    failure.attempt([&target] { target->finish(); });
  }
  failure.rethrow();
}

}  // namespace grouptracker

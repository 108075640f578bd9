#pragma once

#include "host/pictures/PictureExchange.h"
#include "host/pictures/StepPainter.h"
#include "host/run/StepSink.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// Which pictures are drawn, and for whom.
struct PictureOptions {
  std::string path;           ///< a film or a folder, see `VideoFile`; empty for none
  bool showsTopView = false;  ///< beside the images; it is there in any case when there are none
  double rate = 10.0;         ///< pictures per second
  std::shared_ptr<PictureExchange> screen;  ///< for a window; null for none
};

/// Draws every reported frame once, for a film or folder and for a screen.
class PictureWriter : public StepSink {
 public:
  explicit PictureWriter(const PictureOptions& options);

  void write(const RunStep& step) override;
  void finish() override;

 private:
  /// Images that were not read yet would be lost.
  void refuseImagesOfInput(const RunStep& step);

  std::string m_path;
  std::optional<std::filesystem::path> m_knownFolder;  ///< of the image before
  StepPainter m_painter;
  std::vector<std::shared_ptr<PictureTarget>> m_targets;
};

}  // namespace grouptracker

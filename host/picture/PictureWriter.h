#pragma once

#include "StepPainter.h"
#include "StepSink.h"
#include "VideoFile.h"

#include <string>

/// How pictures are written.
struct PictureOptions {
  std::string path;           ///< a film or a folder, see `VideoFile`; empty for none
  bool showsTopView = false;  ///< beside the images; it is there in any case when there are none
  double rate = 10.0;         ///< pictures per second
};

/// Draws every reported frame into a film or a folder of images.
class PictureWriter : public StepSink {
 public:
  explicit PictureWriter(const PictureOptions& options)
      : m_painter(options.showsTopView), m_video(options.path, options.rate) {}

  void write(const ReportedStep& step) override;
  void finish() override { m_video.finish(); }

 private:
  StepPainter m_painter;
  VideoFile m_video;
};

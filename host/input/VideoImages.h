#pragma once

#include "host/people/FrameSource.h"

#include <opencv2/videoio.hpp>

#include <cstdint>
#include <memory>
#include <string>

namespace grouptracker {

/// Gives the frames of an input that names no images those of a video file: the first frame the
/// video's first, and so on. An image that the input names itself is kept. A file that is no
/// readable video or that ends before the input is an `InputError`.
class VideoImages : public FrameSource {
 public:
  VideoImages(std::unique_ptr<FrameSource> source, const std::string& file);

  bool next(InputFrame& frame) override;
  std::optional<std::uint64_t> totalFrames() override { return m_source->totalFrames(); }

 private:
  std::unique_ptr<FrameSource> m_source;
  std::string m_file;
  cv::VideoCapture m_video;
  std::uint64_t m_frames = 0;
};

}  // namespace grouptracker

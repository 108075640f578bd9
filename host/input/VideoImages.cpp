#include "host/input/VideoImages.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"

#include <utility>

namespace grouptracker {

VideoImages::VideoImages(std::unique_ptr<FrameSource> source, const std::string& file)
    : m_source(std::move(source)), m_file(file) {
  const InputFile canBeOpened(file);
  try {
    m_video.open(file);
  } catch (const cv::Exception&) {
    m_video.release();  // the same as a file that is no video
  }
  if (!m_video.isOpened()) {
    throw InputError(file, "neither a folder of images nor a readable video");
  }
}

bool VideoImages::next(InputFrame& frame) {
  if (!m_source->next(frame)) {
    return false;
  }
  cv::Mat pixels;
  if (!m_video.read(pixels) || pixels.empty()) {
    throw InputError(frame.place, m_file + " has only " + std::to_string(m_frames) +
                                      " frames, none for frame " + std::to_string(m_frames + 1));
  }
  ++m_frames;
  if (frame.imageFile.empty()) {
    // A copy of its own: the video's reader writes the next frame over this one.
    frame.image = QSharedPointer<kelDataImage>::create(pixels.clone());
  }
  return true;
}

}  // namespace grouptracker

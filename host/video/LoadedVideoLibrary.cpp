#include "host/video/FilmEncoder.h"
#include "host/video/VideoLibrary.h"

#include <opencv2/videoio.hpp>

#include <utility>

namespace grouptracker {

namespace {

class CapturedPictures : public VideoPictures {
 public:
  explicit CapturedPictures(cv::VideoCapture video) : m_video(std::move(video)) {}

  cv::Size size() const override {
    return {static_cast<int>(m_video.get(cv::CAP_PROP_FRAME_WIDTH)),
            static_cast<int>(m_video.get(cv::CAP_PROP_FRAME_HEIGHT))};
  }
  cv::Mat next() override {
    cv::Mat picture;
    // A copy of its own: the video's reader writes the next picture over this one.
    return m_video.read(picture) ? picture.clone() : cv::Mat();
  }

 private:
  cv::VideoCapture m_video;
};

class LoadedVideoLibrary : public VideoLibrary {
 public:
  std::unique_ptr<VideoPictures> open(const std::string& file) const override {
    cv::VideoCapture video;
    try {
      video.open(file);
    } catch (const cv::Exception&) {
      return nullptr;  // the same as a file that is no video
    }
    return video.isOpened() ? std::make_unique<CapturedPictures>(std::move(video)) : nullptr;
  }
  std::unique_ptr<FilmEncoding> encode(FilmTarget& target, const std::string& name,
                                       double rate) const override {
    return std::make_unique<FilmEncoder>(target, name, rate);
  }
};

}  // namespace

}  // namespace grouptracker

extern "C" __attribute__((visibility("default"))) const void* groupTrackerVideoLibrary() {
  static const grouptracker::LoadedVideoLibrary library;
  return static_cast<const grouptracker::VideoLibrary*>(&library);
}

#pragma once

#include "host/pictures/PictureTarget.h"

#include <opencv2/core.hpp>
#include <opencv2/videoio.hpp>

#include <string>

namespace grouptracker {

/// A film, for a path with the ending of one (.mp4, .mkv, .avi), or a folder of numbered
/// PNG images, for a path without ending or a folder that is there. The place is tried at once; one
/// that cannot be written, or has another ending, is an `OutputError`.
class VideoFile : public PictureTarget {
 public:
  /// `rate` is in pictures per second.
  VideoFile(const std::string& path, double rate);

  /// The name of an image within its folder.
  static std::string imageName(std::int64_t number);
  /// `number` names the picture among images.
  void add(const cv::Mat& picture, std::int64_t number) override;
  /// Completes the film.
  void finish() override;

 private:
  void open(cv::Size size);
  [[noreturn]] void fail(const std::string& reason) const;

  std::string m_path;
  double m_rate;
  bool m_isFilm;
  cv::VideoWriter m_film;
};

}  // namespace grouptracker

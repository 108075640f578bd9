#pragma once

#include "host/base/FileDescriptor.h"
#include "host/pictures/Film.h"
#include "host/pictures/PictureTarget.h"

#include <opencv2/core.hpp>

#include <memory>
#include <string>

namespace grouptracker {

/// A film, for a path with the ending of one (.mp4, .mkv, .avi), or a folder of numbered PNG
/// images, for a path without ending or a folder that is there; each image is there as a whole or
/// not at all. The place is tried and locked at once; one that cannot be written is an
/// `OutputError`.
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
  void openFolder();

  std::string m_path;
  std::unique_ptr<Film> m_film;  ///< null for a folder
  FileDescriptor m_folder;       ///< not open for a film
};

}  // namespace grouptracker

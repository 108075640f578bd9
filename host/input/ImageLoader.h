#pragma once

#include "host/people/InputFrame.h"

#include <opencv2/core.hpp>

#include <filesystem>
#include <string>

namespace grouptracker {

/// Reads an image in colour. A file that is no readable image is an `InputError` at `place`.
cv::Mat readImage(const std::filesystem::path& file, const std::string& place);

/// Loads the images of an input's frames from their files. A file that is no readable image and an
/// image of another size than the first are an `InputError` at the frame's place.
class ImageLoader {
 public:
  /// Loads the frame's image when it names a file and holds none yet.
  void load(InputFrame& frame);

 private:
  cv::Size m_size;  ///< of the first image, pixels; empty before
};

}  // namespace grouptracker

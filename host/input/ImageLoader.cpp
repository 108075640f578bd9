#include "host/input/ImageLoader.h"

#include "host/base/InputError.h"

#include <fmt/format.h>
#include <opencv2/imgcodecs.hpp>

namespace grouptracker {

cv::Mat readImage(const std::filesystem::path& file, const std::string& place) {
  cv::Mat pixels;
  try {
    pixels = cv::imread(file.string(), cv::IMREAD_COLOR);
  } catch (const cv::Exception&) {
    pixels.release();  // the same as a file that is no image
  }
  if (pixels.empty()) {
    throw InputError(place, "the image " + file.string() + " is missing or not readable");
  }
  return pixels;
}

void ImageLoader::load(InputFrame& frame) {
  if (!frame.image && !frame.imageFile.empty()) {
    const cv::Mat pixels = readImage(frame.imageFile, frame.place);
    if (m_size.empty()) {
      m_size = pixels.size();
    }
    if (pixels.size() != m_size) {
      throw InputError(frame.place,
                       fmt::format("the image {} has {}x{} pixels, the first has {}x{}",
                                   frame.imageFile.string(), pixels.cols, pixels.rows, m_size.width,
                                   m_size.height));
    }
    frame.image = QSharedPointer<kelDataImage>::create(pixels);
  }
}

}  // namespace grouptracker

#include "ImageStrip.h"

#include "InputError.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t mostImages = 600;
constexpr int width = 480;  // pixels, of images that are wider
constexpr int quality = 70;

}  // namespace

void ImageStrip::addFrame(std::filesystem::path file, std::string place) {
  m_hasImages = m_hasImages || !file.empty();
  m_frames.push_back({std::move(file), std::move(place)});
}

std::size_t ImageStrip::every() const {
  return m_hasImages ? (m_frames.size() + mostImages - 1) / mostImages : 0;
}

std::vector<QByteArray> ImageStrip::load() const {
  std::vector<QByteArray> images;
  for (std::size_t i = 0; m_hasImages && i < m_frames.size(); i += every()) {
    const Frame& frame = m_frames[i];
    if (frame.file.empty()) {
      images.emplace_back();
      continue;
    }
    try {
      cv::Mat pixels = cv::imread(frame.file.string(), cv::IMREAD_COLOR);
      const double factor = std::min(1.0, static_cast<double>(width) / pixels.cols);
      cv::resize(pixels, pixels, {}, factor, factor, cv::INTER_AREA);
      std::vector<uchar> bytes;
      cv::imencode(".jpg", pixels, bytes, {cv::IMWRITE_JPEG_QUALITY, quality});
      images.push_back(
          QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()))
              .toBase64());
    } catch (const cv::Exception&) {
      throw InputError(frame.place,
                       "the image " + frame.file.string() + " is missing or not readable");
    }
  }
  return images;
}

#include "host/report/ImageStrip.h"

#include "host/input/ImageLoader.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <utility>

namespace grouptracker {

namespace {

constexpr std::size_t mostImages = 600;
constexpr int width = 480;  // pixels, of images that are wider
constexpr int quality = 70;

std::int16_t toPixels(double length) {
  return cv::saturate_cast<std::int16_t>(length);
}

}  // namespace

void ImageStrip::addFrame(std::filesystem::path file, std::string place,
                          std::vector<PersonPlace> people) {
  m_hasImages = m_hasImages || !file.empty();
  m_frames.push_back({std::move(file), std::move(place), std::move(people)});
}

std::size_t ImageStrip::every() const {
  return m_hasImages ? (m_frames.size() + mostImages - 1) / mostImages : 0;
}

std::vector<QByteArray> ImageStrip::load(ReportBody& body) const {
  std::vector<QByteArray> images;
  Boxes boxes;
  for (std::size_t i = 0; m_hasImages && i < m_frames.size(); i += every()) {
    const Frame& frame = m_frames[i];
    images.push_back(frame.file.empty() ? QByteArray() : shrink(frame, boxes));
    boxes.ends.push_back(static_cast<std::uint32_t>(boxes.persons.size()));
  }
  body.add("boxesEnd", boxes.ends);
  body.add("boxPerson", boxes.persons);
  body.add("boxX", boxes.x);
  body.add("boxY", boxes.y);
  body.add("boxWidth", boxes.widths);
  body.add("boxHeight", boxes.heights);
  return images;
}

QByteArray ImageStrip::shrink(const Frame& frame, Boxes& boxes) {
  cv::Mat pixels = readImage(frame.file, frame.place);
  const double factor = std::min(1.0, static_cast<double>(width) / pixels.cols);
  cv::resize(pixels, pixels, {}, factor, factor, cv::INTER_AREA);
  std::vector<uchar> bytes;
  cv::imencode(".jpg", pixels, bytes, {cv::IMWRITE_JPEG_QUALITY, quality});
  for (const PersonPlace& person : frame.people) {
    boxes.persons.push_back(person.person);
    boxes.x.push_back(toPixels(person.box2D.x * factor));
    boxes.y.push_back(toPixels(person.box2D.y * factor));
    boxes.widths.push_back(toPixels(person.box2D.width * factor));
    boxes.heights.push_back(toPixels(person.box2D.height * factor));
  }
  return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()))
      .toBase64();
}

}  // namespace grouptracker

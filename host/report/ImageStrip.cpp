#include "host/report/ImageStrip.h"

#include "host/input/InputImages.h"

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

void ImageStrip::addFrame(const InputFrame& frame, std::vector<RunPerson> persons) {
  m_frames.push_back({frame.imageFile, frame.place, {}, {}});
  if (frame.imageFile.empty() && !frame.image) {
    return;
  }
  m_hasImages = true;
  m_frames.back().persons = std::move(persons);
  if (frame.imageFile.empty()) {
    addPicture(frame.image->mat());
  }
}

void ImageStrip::addPicture(const cv::Mat& picture) {
  if ((m_frames.size() - 1) % m_pictureEvery != 0) {
    return;
  }
  m_frames.back().small = shrink(picture);
  if (++m_pictures <= mostImages) {
    return;
  }
  m_pictureEvery *= 2;
  m_pictures = 0;
  for (std::size_t i = 0; i < m_frames.size(); ++i) {
    if (i % m_pictureEvery != 0) {
      m_frames[i].small = {};
    }
    m_pictures += m_frames[i].small.jpeg.isEmpty() ? 0 : 1;
  }
}

std::size_t ImageStrip::every() const {
  if (m_pictures > 0) {
    std::size_t frames = m_pictureEvery;
    while (m_frames.size() > frames * mostImages) {
      frames *= 2;
    }
    return frames;
  }
  return m_hasImages ? (m_frames.size() + mostImages - 1) / mostImages : 0;
}

std::vector<QByteArray> ImageStrip::load(ReportBody& body) const {
  std::vector<QByteArray> images;
  Boxes boxes;
  for (std::size_t i = 0; m_hasImages && i < m_frames.size(); i += every()) {
    const Frame& frame = m_frames[i];
    const SmallImage image =
        frame.file.empty() ? frame.small : shrink(readImage(frame.file, frame.place));
    images.push_back(image.jpeg);
    addBoxes(frame, image.factor, boxes);
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

ImageStrip::SmallImage ImageStrip::shrink(const cv::Mat& pixels) {
  const double factor = std::min(1.0, static_cast<double>(width) / pixels.cols);
  cv::Mat small;
  cv::resize(pixels, small, {}, factor, factor, cv::INTER_AREA);
  std::vector<uchar> bytes;
  cv::imencode(".jpg", small, bytes, {cv::IMWRITE_JPEG_QUALITY, quality});
  return {QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()))
              .toBase64(),
          factor};
}

void ImageStrip::addBoxes(const Frame& frame, double factor, Boxes& boxes) {
  for (const RunPerson& person : frame.persons) {
    if (!person.seen) {
      continue;
    }
    const cv::Rect& box = person.seen->box2D;
    boxes.persons.push_back(person.id);
    boxes.x.push_back(toPixels(box.x * factor));
    boxes.y.push_back(toPixels(box.y * factor));
    boxes.widths.push_back(toPixels(box.width * factor));
    boxes.heights.push_back(toPixels(box.height * factor));
  }
}

}  // namespace grouptracker

#include "host/report/ImageStrip.h"

#include "host/input/InputImages.h"
#include "tracker/images/ImageCodec.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <utility>

namespace grouptracker {

namespace {

constexpr std::size_t mostImages = 600;
constexpr int keptQuality = 92;  // of images that will be encoded once more

std::int16_t toPixels(double length) {
  return cv::saturate_cast<std::int16_t>(length);
}

}  // namespace

// From the one that everybody wants to the one that always fits.
const std::array<ImageStrip::Form, 9> ImageStrip::forms{{{480, 70},
                                                         {480, 60},
                                                         {480, 50},
                                                         {400, 50},
                                                         {400, 40},
                                                         {320, 45},
                                                         {320, 35},
                                                         {240, 40},
                                                         {240, 25}}};

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
    m_pictures += m_frames[i].small.jpeg.empty() ? 0 : 1;
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

ImageStrip::Images ImageStrip::load(ReportBody& body) const {
  std::vector<SmallImage> kept;
  for (std::size_t i = 0; m_hasImages && i < m_frames.size(); i += every()) {
    const Frame& frame = m_frames[i];
    kept.push_back(frame.file.empty() ? frame.small : shrink(readImage(frame.file, frame.place)));
  }
  Images images = fitted(kept);
  Boxes boxes;
  for (std::size_t i = 0; i < kept.size(); ++i) {
    const double factor =
        std::min(1.0, static_cast<double>(images.width) / std::max(1, kept[i].width));
    addBoxes(m_frames[i * every()], factor, boxes);
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
  const double factor = std::min(1.0, static_cast<double>(forms.front().width) / pixels.cols);
  cv::Mat small;
  cv::resize(pixels, small, {}, factor, factor, cv::INTER_AREA);
  SmallImage image;
  image.width = pixels.cols;
  image.jpeg = ImageCodec::loaded().encode(".jpg", small, {cv::IMWRITE_JPEG_QUALITY, keptQuality});
  return image;
}

ImageStrip::Images ImageStrip::inForm(const std::vector<SmallImage>& images, const Form& form) {
  Images made;
  made.width = form.width;
  for (const SmallImage& image : images) {
    cv::Mat pixels;
    if (!image.jpeg.empty()) {
      pixels = ImageCodec::loaded().decode(image.jpeg);
    }
    if (pixels.empty()) {
      made.files.emplace_back();
      continue;
    }
    if (pixels.cols > form.width) {
      const double factor = static_cast<double>(form.width) / pixels.cols;
      cv::resize(pixels, pixels, {}, factor, factor, cv::INTER_AREA);
    }
    const std::vector<uchar> bytes = ImageCodec::loaded().encode(
        ".jpg", pixels, {cv::IMWRITE_JPEG_QUALITY, form.quality, cv::IMWRITE_JPEG_OPTIMIZE, 1});
    made.files.push_back(
        QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()))
            .toBase64());
  }
  return made;
}

std::size_t ImageStrip::sizeOf(const Images& images) {
  std::size_t bytes = 0;
  for (const QByteArray& file : images.files) {
    bytes += static_cast<std::size_t>(file.size());
  }
  return bytes;
}

// Some of the images tell which form might do; all of them, whether it does.
ImageStrip::Images ImageStrip::fitted(const std::vector<SmallImage>& images) const {
  constexpr std::size_t samples = 12;
  std::vector<SmallImage> some;
  const std::size_t stride = std::max<std::size_t>(1, images.size() / samples);
  for (std::size_t i = 0; i < images.size(); i += stride) {
    some.push_back(images[i]);
  }
  for (const Form& form : forms) {
    const bool isLast = &form == &forms.back();
    if (!isLast && sizeOf(inForm(some, form)) * images.size() > m_mostBytes * some.size()) {
      continue;
    }
    Images all = inForm(images, form);
    if (isLast || sizeOf(all) <= m_mostBytes) {
      return all;
    }
  }
  return {};
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

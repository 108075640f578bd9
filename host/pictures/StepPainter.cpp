#include "host/pictures/StepPainter.h"

#include "host/input/InputImages.h"
#include "host/pictures/Brush.h"
#include "host/pictures/CameraPainter.h"

#include <fmt/format.h>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <string>

namespace grouptracker {

namespace {

constexpr int topViewAloneWidth = 1280;  // pixels, as all sizes below
constexpr int topViewAloneHeight = 720;
constexpr int smallestImageHeight = 360;  // smaller images are enlarged so that labels have room

/// Film codecs want even sizes.
int even(double size) {
  return std::max(2, static_cast<int>(size) / 2 * 2);
}

cv::Mat loadPixels(const RunStep& step) {
  if (step.image && !step.image->mat().empty()) {
    return step.image->mat().clone();
  }
  return readImage(step.imageFile, step.place);
}

}  // namespace

cv::Mat StepPainter::paint(const RunStep& step) {
  if (!m_hasImages) {
    m_hasImages = step.image || !step.imageFile.empty();
  }
  m_past.add(step);
  cv::Mat picture = *m_hasImages ? paintCamera(step) : topView().paint(step, m_past);
  if (*m_hasImages && m_showsTopView) {
    cv::hconcat(picture, topView().paint(step, m_past), picture);
  }
  paintWords(picture, step);
  return picture;
}

cv::Mat StepPainter::paintCamera(const RunStep& step) {
  if (!step.image && step.imageFile.empty()) {
    return {m_imageSize, CV_8UC3, brush::grey};  // a frame for which the input names no image
  }
  cv::Mat image = loadPixels(step);
  if (image.channels() == 1) {
    cv::cvtColor(image, image, cv::COLOR_GRAY2BGR);
  }
  paintOnImage(image, step, m_past);
  if (m_imageSize.empty()) {
    const double factor = std::max(1.0, static_cast<double>(smallestImageHeight) / image.rows);
    m_imageSize = {even(image.cols * factor), even(image.rows * factor)};
  }
  if (image.size() != m_imageSize) {
    cv::resize(image, image, m_imageSize);
  }
  return image;
}

TopViewPainter& StepPainter::topView() {
  if (!m_topView) {
    m_topView.emplace(*m_hasImages ? cv::Size(m_imageSize.height, m_imageSize.height)
                                   : cv::Size(topViewAloneWidth, topViewAloneHeight));
  }
  return *m_topView;
}

void StepPainter::paintWords(cv::Mat& picture, const RunStep& step) const {
  const double scale = brush::scaleFor(picture);
  const int left = static_cast<int>(8 * scale);
  const int lineHeight = static_cast<int>(17 * scale);
  brush::text(picture, fmt::format("frame {}", step.inputFrame.value_or(step.reportedFrame)),
              {left, lineHeight}, *m_hasImages ? brush::white : brush::ink,
              *m_hasImages ? brush::ink : brush::white, scale);
  const auto events = m_past.events();
  if (events.empty()) {
    return;
  }
  int width = 0;
  for (const std::string& event : events) {
    width = std::max(width, brush::sizeOf(event, scale).width);
  }
  int row = picture.rows - lineHeight * static_cast<int>(events.size()) - left / 2;
  brush::shade(picture, {0, row, width + 2 * left, picture.rows - row});
  for (const std::string& event : events) {
    row += lineHeight;
    brush::text(picture, event, {left, row - left / 2}, brush::white, brush::ink, scale);
  }
}

}  // namespace grouptracker

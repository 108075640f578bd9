// The output image of a frame, drawn and saved by OpenCV.

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupExtension.h"
#include "tracker/images/ImageCodec.h"

#include <QFileInfo>
#include <QSaveFile>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

namespace {

// Colours are (blue, green, red), as the pixels are.
const cv::Scalar stampColor(160, 59, 210);
const cv::Scalar mobileColor(200, 200, 200);
const cv::Scalar unionColor(0, 0, 0);

constexpr int stampBaseline = 20;  // pixels below the upper edge
constexpr int labelBelow = 16;     // pixels from a box's bottom down to the baseline of its label
constexpr int labelAbove = 5;      // pixels from a box's top up to it, where there is no room below

void drawText(cv::Mat& pixels, const std::string& text, const cv::Point& origin,
              const cv::Scalar& color) {
  constexpr double scale = 0.5;
  constexpr int thickness = 2;
  cv::putText(pixels, text, origin, cv::FONT_HERSHEY_SIMPLEX, scale, color, thickness, cv::LINE_8);
}

void drawBox(cv::Mat& pixels, const cv::Point& leftTop, const cv::Point& rightBottom,
             const cv::Scalar& color) {
  constexpr int thickness = 1;
  cv::rectangle(pixels, leftTop, rightBottom, color, thickness, cv::LINE_8);
}

void drawLabeledBox(cv::Mat& pixels, const cv::Point& leftTop, const cv::Point& rightBottom,
                    const std::string& label, const cv::Scalar& color) {
  drawBox(pixels, leftTop, rightBottom, color);
  const bool hasRoomBelow = rightBottom.y + labelBelow < pixels.rows;
  const int baseline = hasRoomBelow ? rightBottom.y + labelBelow : leftTop.y - labelAbove;
  drawText(pixels, label, {leftTop.x, baseline}, color);
}

/// Pixels that the stamp of a frame needs up to the right edge of the image.
int stampWidth(int frame) {
  if (frame >= 1000) {
    return 65;
  }
  if (frame >= 100) {
    return 50;
  }
  return frame >= 10 ? 30 : 20;
}

/// Ids are stored without sign and shown with it.
std::string toText(unsigned int id) {
  return std::to_string(static_cast<int>(id));
}

/// Puts the image in place as a whole. Returns why it cannot; nothing when it can.
QString save(const QString& name, const cv::Mat& pixels) {
  std::vector<uchar> bytes;
  try {
    bytes = ImageCodec::loaded().encode(("." + QFileInfo(name).suffix()).toStdString(), pixels);
  } catch (const std::exception&) {
    return "no image can have this name";
  }
  const auto size = static_cast<qint64>(bytes.size());
  QSaveFile file(name);
  const bool isOpen = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
  if (isOpen && file.write(reinterpret_cast<const char*>(bytes.data()), size) != size) {
    return std::strerror(errno);  // of a part the file knows no reason
  }
  return isOpen && file.commit() ? QString() : file.errorString();
}

}  // namespace

void GroupExtension::saveOutputWithOpenCV() {
  m_saveProblem.clear();
  if (!saveOutput || drawnFrame() < 0) {
    return;
  }
  if (m_currentImage.isNull() || m_currentImage->mat().empty()) {
    return;
  }
  cv::Mat& pixels = m_currentImage->mat();
  drawFrameStamp(pixels);
  drawMobiles(pixels);
  for (const DisplayGroup& group : m_displayGroups) {
    drawGroup(pixels, group);
  }
  const std::string name = outputImageName(drawnFrame());
  const QString reason = save(QString::fromStdString(name), pixels);
  if (!reason.isEmpty()) {
    Diagnostics::print("Could not save: {}\n", name);
    m_saveProblem = QStringList{QString::fromStdString(name), "cannot be written: " + reason};
  }
}

void GroupExtension::drawFrameStamp(cv::Mat& pixels) const {
  const int frame = drawnFrame();
  const cv::Point origin(pixels.cols - stampWidth(frame), stampBaseline);
  drawText(pixels, std::to_string(frame), origin, stampColor);
}

void GroupExtension::drawMobiles(cv::Mat& pixels) const {
  for (const Bbox& box : m_bboxes) {
    drawLabeledBox(pixels, {box.left, box.top}, {box.right, box.bottom}, std::to_string(box.ident),
                   mobileColor);
  }
}

void GroupExtension::drawGroup(cv::Mat& pixels, const DisplayGroup& group) {
  // Red first, though the pixels have blue first: groups are known by the exchanged colours.
  const QColor& groupColor = group.getColor();
  const cv::Scalar color(groupColor.red(), groupColor.green(), groupColor.blue());

  // From these values the union only grows, so boxes that all lie beyond them have none.
  constexpr int noLeftTop = 1000;
  constexpr int noRightBottom = 0;
  cv::Point leftTop(noLeftTop, noLeftTop);
  cv::Point rightBottom(noRightBottom, noRightBottom);
  for (const auto& [ident, rect] : group.getMobiles()) {
    const cv::Point corner(rect.x + rect.width, rect.y + rect.height);
    drawLabeledBox(pixels, rect.tl(), corner, toText(group.getId()) + " (" + toText(ident) + ")",
                   color);
    leftTop = {std::min(leftTop.x, rect.x), std::min(leftTop.y, rect.y)};
    rightBottom = {std::max(rightBottom.x, corner.x), std::max(rightBottom.y, corner.y)};
  }
  if (rightBottom.x != noRightBottom && rightBottom.y != noRightBottom && leftTop.x != noLeftTop &&
      leftTop.y != noLeftTop) {
    drawBox(pixels, leftTop, rightBottom, unionColor);
  }
}

// The image of a frame for the screen, painted by Qt.

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupExtension.h"

#include <QFont>
#include <QGuiApplication>
#include <QPainter>
#include <QPen>
#include <opencv2/core/hal/interface.h>

namespace {

constexpr int frameFontSize = 12;  // points
constexpr int identFontSize = 8;   // points
constexpr int frameOffset = 20;    // pixels from the left and upper edges
constexpr int identAbove = 2;      // pixels between a box and its label
constexpr int markRadius = 4;      // pixels

/// Adds a text in the pen's colour. Only a GUI application has fonts.
void paintText(QPainter& painter, const QPoint& origin, const QString& text, int pointSize) {
  if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) {
    return;
  }
  painter.setFont(QFont("comic sans ms", pointSize, QFont::Bold));
  painter.drawText(origin, text);
}

void setPen(QPainter& painter, const QColor& color, Qt::PenStyle style) {
  constexpr qreal hairline = 0.0;
  painter.setPen(QPen(color, hairline, style));
}

/// The points of a flat list: column, row, column, row, ...
template <typename Function>
void forEachPoint(const std::vector<int>& pixels, Function function) {
  for (std::size_t i = 0; i + 1 < pixels.size(); i += 2) {
    function(QPoint(pixels[i], pixels[i + 1]));
  }
}

}  // namespace

QImage GroupExtension::drawExtension() const {
  if (!extDisplayOn && !saveOutput) {
    return {};
  }
  QImage canvas = toQt(m_currentImage);
  if (canvas.isNull()) {
    return {};
  }
  QPainter painter(&canvas);
  paintMobiles(painter, m_bboxes, Qt::SolidLine);
  paintMobiles(painter, m_inclBboxes, Qt::DashDotLine);
  paintGroups(painter);
  paintMarks(painter);
  setPen(painter, Qt::darkMagenta, Qt::SolidLine);
  paintText(painter, {frameOffset, frameOffset}, QString::number(drawnFrame()), frameFontSize);
  painter.end();
  return canvas;
}

QImage GroupExtension::toQt(const QSharedPointer<kelDataImage>& image) {
  const cv::Mat pixels = image.isNull() ? cv::Mat() : image->mat();
  // The conversion copies, so that the result does not look into the host's pixels.
  const auto copyAs = [&pixels](QImage::Format format) {
    return QImage(pixels.data, pixels.cols, pixels.rows, static_cast<int>(pixels.step), format)
        .convertToFormat(QImage::Format_RGB32);
  };
  if (!pixels.empty() && pixels.type() == CV_8UC3) {
    return copyAs(QImage::Format_BGR888);
  }
  if (!pixels.empty() && pixels.type() == CV_8UC1) {
    return copyAs(QImage::Format_Grayscale8);
  }
  Diagnostics::print("Image cannot be converted.");
  return {};
}

void GroupExtension::paintMobiles(QPainter& painter, const std::list<Bbox>& boxes,
                                  Qt::PenStyle style) {
  for (const Bbox& box : boxes) {
    setPen(painter, Qt::lightGray, style);
    painter.drawRect(box.left, box.top, box.right - box.left, box.bottom - box.top);
    paintText(painter, {box.left, box.top - identAbove}, QString::number(box.ident), identFontSize);
  }
}

void GroupExtension::paintGroups(QPainter& painter) const {
  for (const DisplayGroup& group : m_displayGroups) {
    setPen(painter, group.getColor(), Qt::SolidLine);
    for (const auto& [ident, rect] : group.getMobiles()) {
      painter.drawRect(rect.x, rect.y, rect.width, rect.height);
    }
  }
}

void GroupExtension::paintMarks(QPainter& painter) const {
  setPen(painter, Qt::darkMagenta, Qt::SolidLine);
  forEachPoint(m_centers, [&painter](const QPoint& center) {
    painter.drawEllipse(center, markRadius, markRadius);
  });
  forEachPoint(m_suddenPoints, [&painter](const QPoint& point) {
    paintText(painter, point, "SUDDEN", frameFontSize);
  });
}

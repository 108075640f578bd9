#include "host/simulation/FrameRenderer.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double tile = 1.5;          // m, of the paving
constexpr double shadowLength = 1.5;  // m
const cv::Point2d awayFromSun(0.8, 0.6);
constexpr double shadowDepth = 0.45;  // share of the light that is missing
constexpr int subPixelBits = 4;       // figures are drawn to a sixteenth of a pixel

// A figure from the ground up, metres.
constexpr double hip = 0.85;
constexpr double shoulder = 1.42;
constexpr double headMiddle = 1.57;
constexpr double headRadius = 0.13;
constexpr double legWidth = 0.3;
constexpr double bodyWidth = 0.46;
const cv::Scalar skin(140, 170, 215);

/// Hues a golden angle apart, so that people who come one after the other differ.
cv::Scalar clothes(std::uint32_t person, int part) {
  constexpr double goldenAngle = 137.50776;  // degrees
  const double hue = std::fmod(person * goldenAngle + part * 200.0, 360.0) / 2.0;
  const cv::Mat3b hsv(1, 1,
                      part == 0 ? cv::Vec3b(cv::saturate_cast<uchar>(hue), 190, 215)
                                : cv::Vec3b(cv::saturate_cast<uchar>(hue), 90, 90));
  cv::Mat3b bgr;
  cv::cvtColor(hsv, bgr, cv::COLOR_HSV2BGR);
  const cv::Vec3b& colour = bgr(0, 0);
  return {static_cast<double>(colour[0]), static_cast<double>(colour[1]),
          static_cast<double>(colour[2])};
}

cv::Point fine(const cv::Point2d& point) {
  constexpr double scale = 1 << subPixelBits;
  return {cvRound(point.x * scale), cvRound(point.y * scale)};
}

void fill(cv::Mat& image, const std::vector<cv::Point>& outline, const cv::Scalar& colour) {
  cv::fillConvexPoly(image, outline, colour, cv::LINE_AA, subPixelBits);
}

}  // namespace

FrameRenderer::FrameRenderer(const SimulatedView& view)
    : m_view(view), m_ground(SimulatedView::imageSize, CV_8UC3) {
  const cv::Scalar light(148, 152, 154);
  const cv::Scalar dark(132, 136, 138);
  m_ground = light;
  constexpr int tilesAside = 24;
  constexpr int tilesDeep = 56;
  for (int column = -tilesAside; column < tilesAside; ++column) {
    for (int row = 2; row < tilesDeep; ++row) {
      if ((column + row) % 2 != 0) {
        continue;
      }
      std::vector<cv::Point> outline;
      for (const cv::Point& corner : {cv::Point(0, 0), {1, 0}, {1, 1}, {0, 1}}) {
        outline.push_back(
            fine(m_view.project({(column + corner.x) * tile, (row + corner.y) * tile, 0.0})));
      }
      fill(m_ground, outline, dark);
    }
  }
}

cv::Mat FrameRenderer::render(const std::vector<Walker>& inView) const {
  cv::Mat shade(m_ground.size(), CV_8UC3, cv::Scalar::all(255));
  for (const Walker& walker : inView) {
    drawShadow(shade, walker);
  }
  cv::Mat image;
  cv::multiply(m_ground, shade, image, 1.0 / 255.0);
  std::vector<Walker> farthestFirst = inView;
  std::stable_sort(farthestFirst.begin(), farthestFirst.end(),
                   [](const Walker& a, const Walker& b) { return a.position.y > b.position.y; });
  for (const Walker& walker : farthestFirst) {
    drawFigure(image, walker);
  }
  return image;
}

void FrameRenderer::drawShadow(cv::Mat& shade, const Walker& walker) const {
  constexpr int corners = 24;
  const cv::Point2d aside(-awayFromSun.y, awayFromSun.x);
  std::vector<cv::Point> outline;
  for (int i = 0; i < corners; ++i) {
    const double angle = 2.0 * CV_PI * i / corners;
    const cv::Point2d place = walker.position +
                              awayFromSun * (shadowLength / 2.0 * (1.0 + std::cos(angle))) +
                              aside * (bodyWidth / 2.0 * std::sin(angle));
    outline.push_back(fine(m_view.project({place.x, place.y, 0.0})));
  }
  fill(shade, outline, cv::Scalar::all(255 * (1.0 - shadowDepth)));
}

void FrameRenderer::drawFigure(cv::Mat& image, const Walker& walker) const {
  drawPart(image, walker, 0.0, hip, legWidth, clothes(walker.id, 1));
  drawPart(image, walker, hip, shoulder, bodyWidth, clothes(walker.id, 0));
  const cv::Point2d head = m_view.project({walker.position.x, walker.position.y, headMiddle});
  const cv::Point2d top =
      m_view.project({walker.position.x, walker.position.y, headMiddle + headRadius});
  cv::circle(image, fine(head), cvRound((head.y - top.y) * (1 << subPixelBits)), skin, cv::FILLED,
             cv::LINE_AA, subPixelBits);
}

void FrameRenderer::drawPart(cv::Mat& image, const Walker& walker, double low, double high,
                             double width, const cv::Scalar& colour) const {
  const double left = walker.position.x - width / 2.0;
  const double right = walker.position.x + width / 2.0;
  const double y = walker.position.y;
  fill(image,
       {fine(m_view.project({left, y, low})), fine(m_view.project({right, y, low})),
        fine(m_view.project({right, y, high})), fine(m_view.project({left, y, high}))},
       colour);
}

}  // namespace grouptracker

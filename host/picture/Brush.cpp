#include "Brush.h"

#include <opencv2/imgproc.hpp>

#include <cstddef>

namespace brush {

void text(cv::Mat& picture, const std::string& text, cv::Point at, const cv::Scalar& colour) {
  constexpr double size = 0.45;
  constexpr int rim = 3;  // pixels
  cv::putText(picture, text, at, cv::FONT_HERSHEY_SIMPLEX, size, ink, rim, cv::LINE_AA);
  cv::putText(picture, text, at, cv::FONT_HERSHEY_SIMPLEX, size, colour, 1, cv::LINE_AA);
}

void hull(cv::Mat& picture, const std::vector<cv::Point>& points, const cv::Scalar& colour) {
  if (points.empty()) {
    return;
  }
  constexpr double opacity = 0.25;
  std::vector<cv::Point> rim;
  cv::convexHull(points, rim);
  const cv::Rect area = cv::boundingRect(rim) & cv::Rect({0, 0}, picture.size());
  if (!area.empty()) {
    cv::Mat inside = picture(area);
    cv::Mat filled = inside.clone();
    std::vector<cv::Point> shifted;
    for (const cv::Point& point : rim) {
      shifted.push_back(point - area.tl());
    }
    cv::fillConvexPoly(filled, shifted, colour);
    cv::addWeighted(filled, opacity, inside, 1.0 - opacity, 0.0, inside);
  }
  cv::polylines(picture, rim, true, colour, 2, cv::LINE_AA);
}

void trace(cv::Mat& picture, const std::vector<cv::Point>& points, const cv::Scalar& colour) {
  for (std::size_t i = 1; i < points.size(); ++i) {
    const double strength = static_cast<double>(i) / static_cast<double>(points.size());
    const cv::Scalar faint = colour * strength + grey * (1.0 - strength);
    cv::line(picture, points[i - 1], points[i], faint, 1, cv::LINE_AA);
  }
}

}  // namespace brush

#include "host/pictures/Brush.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace grouptracker {

namespace brush {

namespace {

constexpr int font = cv::FONT_HERSHEY_SIMPLEX;
constexpr double textSize = 0.42;
constexpr int platePadding = 3;  // pixels

/// Strokes of larger texts are wider.
int strokeWidth(double scale) {
  return std::max(1, static_cast<int>(std::lround(scale)));
}

/// How bright a colour looks, 0 to 255.
double brightness(const cv::Scalar& colour) {
  return 0.114 * colour[0] + 0.587 * colour[1] + 0.299 * colour[2];
}

void blend(cv::Mat& picture, const cv::Rect& area, const cv::Mat& above, double opacity) {
  cv::Mat inside = picture(area);
  cv::addWeighted(above, opacity, inside, 1.0 - opacity, 0.0, inside);
}

}  // namespace

double scaleFor(const cv::Mat& picture) {
  constexpr double usualRows = 500.0;
  constexpr double largest = 2.0;
  return std::clamp(picture.rows / usualRows, 1.0, largest);
}

cv::Size sizeOf(const std::string& text, double scale) {
  int baseline = 0;
  return cv::getTextSize(text, font, textSize * scale, strokeWidth(scale), &baseline);
}

void text(cv::Mat& picture, const std::string& text, cv::Point at, const cv::Scalar& colour,
          const cv::Scalar& rim, double scale) {
  const int width = strokeWidth(scale);
  cv::putText(picture, text, at, font, textSize * scale, rim, width + 2, cv::LINE_AA);
  cv::putText(picture, text, at, font, textSize * scale, colour, width, cv::LINE_AA);
}

cv::Size plateSize(const std::string& text, double scale) {
  return sizeOf(text, scale) + cv::Size(2 * platePadding, 2 * platePadding + 1);
}

void plate(cv::Mat& picture, const std::string& text, const cv::Rect& place,
           const cv::Scalar& colour, double scale) {
  constexpr double bright = 140.0;
  cv::rectangle(picture, place, colour, cv::FILLED);
  const cv::Point at(place.x + platePadding, place.y + place.height - platePadding - 1);
  cv::putText(picture, text, at, font, textSize * scale,
              brightness(colour) > bright ? cv::Scalar() : white, strokeWidth(scale), cv::LINE_AA);
}

void shade(cv::Mat& picture, const cv::Rect& area) {
  constexpr double opacity = 0.5;
  const cv::Rect seen = area & cv::Rect({0, 0}, picture.size());
  if (!seen.empty()) {
    blend(picture, seen, cv::Mat(seen.size(), picture.type(), ink), opacity);
  }
}

void hull(cv::Mat& picture, const std::vector<cv::Point>& points, const cv::Scalar& colour,
          double opacity) {
  constexpr int rimWidth = 2;  // pixels
  if (points.empty()) {
    return;
  }
  std::vector<cv::Point> rim;
  cv::convexHull(points, rim);
  const cv::Rect area = cv::boundingRect(rim) & cv::Rect({0, 0}, picture.size());
  if (!area.empty()) {
    cv::Mat filled = picture(area).clone();
    std::vector<cv::Point> shifted;
    shifted.reserve(rim.size());
    for (const cv::Point& point : rim) {
      shifted.push_back(point - area.tl());
    }
    cv::fillConvexPoly(filled, shifted, colour);
    blend(picture, area, filled, opacity);
  }
  cv::polylines(picture, rim, true, ink, rimWidth + 1, cv::LINE_AA);
  cv::polylines(picture, rim, true, colour, rimWidth, cv::LINE_AA);
}

void trace(cv::Mat& picture, const std::vector<cv::Point>& points, const cv::Scalar& colour) {
  constexpr int width = 2;  // pixels
  for (std::size_t i = 1; i < points.size(); ++i) {
    const double strength = static_cast<double>(i) / static_cast<double>(points.size());
    const cv::Scalar faint = colour * strength + grey * (1.0 - strength);
    cv::line(picture, points[i - 1], points[i], faint, width, cv::LINE_AA);
  }
}

}  // namespace brush

}  // namespace grouptracker

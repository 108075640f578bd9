#pragma once

#include <opencv2/core.hpp>

#include <string>
#include <vector>

namespace grouptracker {

/// Strokes that all pictures share. Colours are blue-green-red, places pixels with y downwards.
namespace brush {

inline const cv::Scalar grey(150, 150, 150);
inline const cv::Scalar pale(225, 225, 225);
inline const cv::Scalar white(255, 255, 255);
inline const cv::Scalar ink(40, 40, 40);

// Texts have a scale: 1 is right for pictures of some 500 rows.

/// The scale for a picture.
double scaleFor(const cv::Mat& picture);

/// Width and height of a text, without what hangs below the line.
cv::Size sizeOf(const std::string& text, double scale);
/// Text with a thin rim of another colour, readable on any ground; `at` is its lower left corner.
void text(cv::Mat& picture, const std::string& text, cv::Point at, const cv::Scalar& colour,
          const cv::Scalar& rim, double scale);
/// Text on a plate of the colour, in black or white, whichever reads better on it.
void plate(cv::Mat& picture, const std::string& text, const cv::Rect& place,
           const cv::Scalar& colour, double scale);
/// The size of the plate for a text.
cv::Size plateSize(const std::string& text, double scale);
/// Darkens a part of the picture so that white text can be read on it.
void shade(cv::Mat& picture, const cv::Rect& area);
/// The convex hull of the points: its rim, with a dark edge that shows pale colours on white, and
/// its inside shining through.
void hull(cv::Mat& picture, const std::vector<cv::Point>& points, const cv::Scalar& colour,
          double opacity);
/// A line through the points that grows fainter towards the first.
void trace(cv::Mat& picture, const std::vector<cv::Point>& points, const cv::Scalar& colour);

}  // namespace brush

}  // namespace grouptracker

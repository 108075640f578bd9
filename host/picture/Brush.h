#pragma once

#include <opencv2/core.hpp>

#include <string>
#include <vector>

/// Strokes that all pictures share. Colours are blue-green-red, places pixels with y downwards.
namespace brush {

inline const cv::Scalar grey(150, 150, 150);
inline const cv::Scalar white(255, 255, 255);
inline const cv::Scalar ink(40, 40, 40);

/// Text with a thin dark rim, readable on any ground; `at` is its lower left corner.
void text(cv::Mat& picture, const std::string& text, cv::Point at, const cv::Scalar& colour);
/// The convex hull of the points: its rim, and its inside shining through.
void hull(cv::Mat& picture, const std::vector<cv::Point>& points, const cv::Scalar& colour);
/// A line through the points that grows fainter towards the first.
void trace(cv::Mat& picture, const std::vector<cv::Point>& points, const cv::Scalar& colour);

}  // namespace brush

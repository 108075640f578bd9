#pragma once

#include <opencv2/core.hpp>

#include <istream>
#include <string>

namespace grouptracker {

/// Which image coordinate a homography takes first.
enum class ImageOrder { ColumnRow, RowColumn };

/// The point to which a homography maps `point`; not finite for a point at the horizon.
cv::Point2d mapPoint(const cv::Matx33d& homography, const cv::Point2d& point);

/// Reads a homography from the image to the ground: three lines of three numbers, for example
///
///     2.8128700e-02   2.0091900e-03  -4.6693600e+00
///     8.0625700e-04   2.5195500e-02  -5.0608800e+00
///     3.4555400e-04   9.2512200e-05   4.6255300e-01
///
/// and returns the one that takes (column, row, 1), whatever order the file's one takes. Blank
/// lines are passed over. Wrong counts, text and a matrix that cannot be inverted are an
/// `InputError`.
cv::Matx33d readHomography(std::istream& in, const std::string& name, ImageOrder order);
/// The same for a file.
cv::Matx33d readHomography(const std::string& path, ImageOrder order);
/// Whether the file's first filled line holds numbers only, as no other calibration's does.
bool isHomographyFile(const std::string& path);

}  // namespace grouptracker

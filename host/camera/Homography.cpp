#include "host/camera/Homography.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/base/TextNumbers.h"

#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

constexpr int size = 3;
constexpr std::size_t longestLine = 64 * 1024;  // bytes

void readRow(LineReader& lines, double* row) {
  if (!lines.nextFilled()) {
    throw lines.error("three lines of three numbers are expected, the file ends before");
  }
  std::vector<double> numbers;
  try {
    parseNumbers(lines.line(), numbers);
  } catch (const ValueProblem& problem) {
    throw lines.error(problem.what());
  }
  if (numbers.size() != size) {
    throw lines.error("three numbers are expected, not " + std::to_string(numbers.size()));
  }
  std::copy(numbers.begin(), numbers.end(), row);
}

}  // namespace

cv::Point2d mapPoint(const cv::Matx33d& homography, const cv::Point2d& point) {
  const cv::Vec3d mapped = homography * cv::Vec3d(point.x, point.y, 1.0);
  return {mapped[0] / mapped[2], mapped[1] / mapped[2]};
}

cv::Matx33d readHomography(std::istream& in, const std::string& name, ImageOrder order) {
  LineReader lines(in, name, longestLine);
  cv::Matx33d homography;
  for (int row = 0; row < size; ++row) {
    readRow(lines, &homography(row, 0));
  }
  const double determinant = cv::determinant(homography);
  if (!std::isfinite(determinant) || determinant == 0.0) {
    throw lines.error("the homography cannot be inverted");
  }
  if (order == ImageOrder::RowColumn) {
    for (int row = 0; row < size; ++row) {
      std::swap(homography(row, 0), homography(row, 1));
    }
  }
  return homography;
}

cv::Matx33d readHomography(const std::string& path, ImageOrder order) {
  InputFile file(path);
  return readHomography(file.stream(), path, order);
}

bool isHomographyFile(const std::string& path) {
  InputFile file(path);
  LineReader lines(file.stream(), path, longestLine);
  std::vector<double> numbers;
  try {
    if (lines.nextFilled()) {
      parseNumbers(lines.line(), numbers);
    }
  } catch (const ValueProblem&) {
    return false;
  } catch (const InputError&) {
    return false;  // too long a line, at which the reader of another calibration stops in turn
  }
  return !numbers.empty();
}

}  // namespace grouptracker

#include "host/camera/GroundPlaneCalibration.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/base/TextNumbers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

constexpr int size = 3;
constexpr std::size_t longestRow = 64 * 1024;  // bytes

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

constexpr double fallbackHeight = 10.0;  // m
constexpr double lowestCamera = 1.0;     // m; an estimate below is none
constexpr double highestCamera = 200.0;  // m; beyond, the view has no perspective to speak of
constexpr int annotationSlack = 12;      // pixels by which annotated feet may leave the image

const std::array<cv::Size, 8> usualSizes{{{320, 240},
                                          {384, 288},
                                          {640, 480},
                                          {720, 576},
                                          {768, 576},
                                          {1280, 720},
                                          {1920, 1080},
                                          {3840, 2160}}};

cv::Vec3d column(const cv::Matx33d& matrix, int index) {
  return {matrix(0, index), matrix(1, index), matrix(2, index)};
}

/// 1 / f² from the two conditions on the ground's axes in the camera: at a right angle, and of one
/// length; the least-squares answer of both. Not above zero when the view is degenerate.
double inverseSquaredFocalLength(const cv::Vec3d& xAxis, const cv::Vec3d& yAxis) {
  const double p1 = xAxis[0] * yAxis[0] + xAxis[1] * yAxis[1];
  const double p2 =
      xAxis[0] * xAxis[0] + xAxis[1] * xAxis[1] - yAxis[0] * yAxis[0] - yAxis[1] * yAxis[1];
  const double q1 = xAxis[2] * yAxis[2];
  const double q2 = xAxis[2] * xAxis[2] - yAxis[2] * yAxis[2];
  return -(p1 * q1 + p2 * q2) / (p1 * p1 + p2 * p2);
}

/// The camera position by taking the homography apart; none when that gives no sensible camera.
std::optional<cv::Point3d> decompose(const cv::Matx33d& imageToGround, const cv::Size& imageSize) {
  const cv::Matx33d toCentre(1, 0, -imageSize.width / 2.0, 0, 1, -imageSize.height / 2.0, 0, 0, 1);
  const cv::Matx33d groundToImage = toCentre * imageToGround.inv();
  const double inverseSquare =
      inverseSquaredFocalLength(column(groundToImage, 0), column(groundToImage, 1));
  if (!std::isfinite(inverseSquare) || inverseSquare <= 0.0) {
    return std::nullopt;
  }
  const double inverseFocal = std::sqrt(inverseSquare);
  const cv::Matx33d rays = cv::Matx33d::diag({inverseFocal, inverseFocal, 1.0}) * groundToImage;
  const double scale = (cv::norm(column(rays, 0)) + cv::norm(column(rays, 1))) / 2.0;
  const cv::Vec3d xAxis = column(rays, 0) * (1.0 / cv::norm(column(rays, 0)));
  const cv::Vec3d yAxis = column(rays, 1) * (1.0 / cv::norm(column(rays, 1)));
  const cv::Vec3d toOrigin = column(rays, 2) * (1.0 / scale);
  // The ground may be seen mirrored, and the scale's sign is open: the height is positive anyhow.
  const double height = std::abs(xAxis.cross(yAxis).dot(toOrigin));
  if (!(height >= lowestCamera && height <= highestCamera)) {
    return std::nullopt;
  }
  return cv::Point3d(-xAxis.dot(toOrigin), -yAxis.dot(toOrigin), height);
}

}  // namespace

cv::Point2d mapPoint(const cv::Matx33d& homography, const cv::Point2d& point) {
  const cv::Vec3d mapped = homography * cv::Vec3d(point.x, point.y, 1.0);
  return {mapped[0] / mapped[2], mapped[1] / mapped[2]};
}

cv::Matx33d readHomography(std::istream& in, const std::string& name, ImageOrder order) {
  LineReader lines(in, name, longestRow);
  cv::Matx33d homography;
  for (int row = 0; row < size; ++row) {
    readRow(lines, &homography(row, 0));
  }
  const double determinant = cv::determinant(homography);
  if (!std::isfinite(determinant) || determinant == 0.0) {
    throw lines.error("the homography cannot be inverted");
  }
  if (lines.nextFilled()) {
    throw lines.error("a homography has three lines; this one is too many");
  }
  if (order == ImageOrder::rowColumn) {
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
  LineReader lines(file.stream(), path, longestRow);
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

GroundPlaneCalibration::GroundPlaneCalibration(const cv::Matx33d& imageToGround,
                                               const cv::Point3d& cameraPosition)
    : m_imageToGround(imageToGround),
      m_groundToImage(imageToGround.inv()),
      m_position(cameraPosition) {}

cv::Point3d GroundPlaneCalibration::imageToWorld(const cv::Point2d& imagePoint,
                                                 double height) const {
  const cv::Point2d ground = mapPoint(m_imageToGround, imagePoint);
  const double share = height / m_position.z;  // of the way from the ground to the camera
  return {ground.x + share * (m_position.x - ground.x),
          ground.y + share * (m_position.y - ground.y), height};
}

cv::Point2d GroundPlaneCalibration::worldToImage(const cv::Point3d& scenePoint) const {
  const double stretch = m_position.z / (m_position.z - scenePoint.z);
  const cv::Point2d ground(m_position.x + stretch * (scenePoint.x - m_position.x),
                           m_position.y + stretch * (scenePoint.y - m_position.y));
  return mapPoint(m_groundToImage, ground);
}

std::vector<CalibrationNode> GroundPlaneCalibration::nodes() const {
  return {{"homography", 3, 3, std::vector<double>(m_imageToGround.val, m_imageToGround.val + 9)},
          {"camera_position", 3, 1, {m_position.x, m_position.y, m_position.z}}};
}

cv::Point3d estimateCameraPosition(const cv::Matx33d& imageToGround, const cv::Size& imageSize) {
  if (const auto position = decompose(imageToGround, imageSize)) {
    return *position;
  }
  const cv::Point2d belowTheImage(imageSize.width / 2.0, 2.0 * imageSize.height);
  const cv::Point2d foot = mapPoint(imageToGround, belowTheImage);
  return {foot.x, foot.y, fallbackHeight};
}

cv::Size guessImageSize(const cv::Point2d& farthest) {
  const double right = std::max(1.0, farthest.x);
  const double bottom = std::max(1.0, farthest.y);
  const auto* const fitting =
      std::find_if(usualSizes.begin(), usualSizes.end(), [&](const cv::Size& usual) {
        return right <= usual.width + annotationSlack && bottom <= usual.height + annotationSlack;
      });
  if (fitting != usualSizes.end()) {
    return *fitting;
  }
  return {static_cast<int>(right), static_cast<int>(bottom)};
}

}  // namespace grouptracker

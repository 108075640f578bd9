#include "host/camera/PinholeCalibration.h"

#include <opencv2/calib3d.hpp>
#include <opencv2/core/types.hpp>

#include <array>
#include <utility>

namespace grouptracker {

namespace {

// Strong distortion converges slowly; the usual handful of iterations leaves pixels of error.
const cv::TermCriteria untilExact(cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 200, 1e-12);

cv::Matx33d rotationOfVector(const cv::Vec3d& rotationVector) {
  cv::Matx33d rotation;
  cv::Rodrigues(rotationVector, rotation);
  return rotation;
}

}  // namespace

PinholeCalibration::PinholeCalibration(const cv::Matx33d& cameraMatrix,
                                       std::vector<double> distortion,
                                       const cv::Vec3d& rotationVector,
                                       const cv::Vec3d& translation)
    : m_cameraMatrix(cameraMatrix),
      m_distortion(std::move(distortion)),
      m_rotationVector(rotationVector),
      m_rotation(rotationOfVector(rotationVector)),
      m_translation(translation),
      m_position(-(m_rotation.t() * translation)) {}

cv::Point3d PinholeCalibration::imageToWorld(const cv::Point2d& imagePoint, double height) const {
  const std::array<cv::Point2d, 1> seen{imagePoint};
  std::array<cv::Point2d, 1> normalised;
  cv::undistortPoints(seen, normalised, m_cameraMatrix, m_distortion, cv::noArray(), cv::noArray(),
                      untilExact);
  const cv::Vec3d ray = m_rotation.t() * cv::Vec3d(normalised[0].x, normalised[0].y, 1.0);
  const double steps = (height - m_position.z) / ray[2];
  return {m_position.x + steps * ray[0], m_position.y + steps * ray[1], height};
}

cv::Point2d PinholeCalibration::worldToImage(const cv::Point3d& scenePoint) const {
  const std::array<cv::Point3d, 1> scene{scenePoint};
  std::array<cv::Point2d, 1> image;
  cv::projectPoints(scene, m_rotationVector, m_translation, m_cameraMatrix, m_distortion, image);
  return image[0];
}

std::vector<CalibrationNode> PinholeCalibration::nodes() const {
  const auto column = [](const cv::Vec3d& v) { return std::vector<double>(v.val, v.val + 3); };
  const int coefficients = static_cast<int>(m_distortion.size());
  std::vector<CalibrationNode> nodes{
      {"camera_matrix", 3, 3, std::vector<double>(m_cameraMatrix.val, m_cameraMatrix.val + 9)},
      {"rotation_vector", 3, 1, column(m_rotationVector)},
      {"translation_vector", 3, 1, column(m_translation)}};
  if (coefficients > 0) {
    nodes.push_back({"distortion_coefficients", 1, coefficients, m_distortion});
  }
  return nodes;
}

}  // namespace grouptracker

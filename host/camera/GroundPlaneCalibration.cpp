#include "host/camera/GroundPlaneCalibration.h"

#include "host/camera/Homography.h"

namespace grouptracker {

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

}  // namespace grouptracker

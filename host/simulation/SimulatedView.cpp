#include "host/simulation/SimulatedView.h"

#include "host/camera/BoxLifter.h"

namespace grouptracker {

namespace {

constexpr double focalLength = 850.0;  // pixels
constexpr double cameraHeight = 7.0;   // m
constexpr double tilt = 0.48869219;    // rad below the horizon: 28 degrees
constexpr double cosOfTilt = 0.88294759;
constexpr double sinOfTilt = 0.46947156;
constexpr double quarterTurn = 1.57079633;  // rad
constexpr double shiftAlongY = cameraHeight * cosOfTilt;
constexpr double shiftAlongZ = cameraHeight * sinOfTilt;

}  // namespace

const cv::Size SimulatedView::imageSize(960, 720);
const cv::Matx33d SimulatedView::cameraMatrix(focalLength, 0.0, 480.0,  //
                                              0.0, focalLength, 360.0,  //
                                              0.0, 0.0, 1.0);
const cv::Vec3d SimulatedView::rotation(quarterTurn + tilt, 0.0, 0.0);
const cv::Vec3d SimulatedView::translation(0.0, shiftAlongY, shiftAlongZ);

bool SimulatedView::sees(const cv::Point2d& foot) const {
  if (foot.y <= 0.0 || foot.y > farthest) {
    return false;
  }
  const cv::Rect box = projectBox(
      *m_camera, standingBody({static_cast<float>(foot.x), static_cast<float>(foot.y), 0}));
  return !box.empty() && (box & cv::Rect({}, imageSize)) == box;
}

}  // namespace grouptracker

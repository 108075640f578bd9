#pragma once

#include "host/camera/GroundPlaneCalibration.h"
#include "host/camera/PeopleCamera.h"

#include <QSharedPointer>

#include <string>
#include <vector>

namespace grouptracker {

/// People who walk to and fro on the ground under a known camera, each in a direction of its own;
/// one of them sits.
class WalkersInView {
 public:
  static constexpr int frames = 80;
  static constexpr int people = 12;

  WalkersInView();

  const QSharedPointer<GroundPlaneCalibration>& camera() const { return m_camera; }
  const std::vector<PersonBox>& boxes() const { return m_boxes; }
  static cv::Size imageSize() { return {768, 576}; }
  /// The boxes as the files that people have, not in order.
  std::string motFile() const;
  std::string cvmlFile() const;

 private:
  QSharedPointer<GroundPlaneCalibration> m_camera;
  std::vector<PersonBox> m_boxes;
};

}  // namespace grouptracker

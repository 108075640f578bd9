#pragma once

#include <opencv2/core.hpp>

#include <vector>

namespace grouptracker {

/// The numbers that an upright camera has, as the refinement varies them.
struct UprightCamera {
  double logFocal = 0.0;   ///< natural logarithm of the focal length in pixels
  double tilt = 0.0;       ///< radians below the horizon
  double roll = 0.0;       ///< radians
  double logHeight = 0.0;  ///< natural logarithm of the height in metres

  static constexpr int count = 4;
  double& operator[](int index);
};

/// A person's feet and head, relative to the image's middle (pixels).
struct StandingPerson {
  cv::Point2d foot;
  double height = 0.0;  ///< pixels
};

/// Two places of one person's feet, some time apart, relative to the image's middle (pixels).
struct Stride {
  cv::Point2d from;
  cv::Point2d to;
};

/// What the refinement explains: people of one body height, and the strides of every walker, all
/// over the same time.
struct WalkingPeople {
  std::vector<StandingPerson> standing;
  std::vector<std::vector<Stride>> walkers;
  double bodyHeight = 0.0;  ///< metres
  double usualFocal = 0.0;  ///< pixels, where nothing else says anything
};

/// The value in the middle of at least one, the upper of the two of an even number.
double median(std::vector<double> values);
/// The rotation from the scene to the camera; rows are right, down and forward.
cv::Matx33d rotationOf(const UprightCamera& camera);
/// The height in pixels at which a body stands on the foot; 0 when the camera cannot see it so.
double expectedHeight(const UprightCamera& camera, const cv::Point2d& foot, double bodyHeight);

/// A refined camera with its cost and what is known of its focal length.
struct RefinedCamera {
  UprightCamera camera;
  double cost = 0.0;
  double focalError = 0.0;  ///< standard error of the focal length's logarithm
};

/// Varies the camera until the robust cost is lowest (Levenberg-Marquardt on reweighted squares).
RefinedCamera refineCamera(const WalkingPeople& people, const UprightCamera& start);

}  // namespace grouptracker

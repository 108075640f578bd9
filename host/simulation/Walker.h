#pragma once

#include <opencv2/core/types.hpp>

#include <cstdint>
#include <optional>
#include <vector>

namespace grouptracker {

/// A simulated person. Metres and seconds on the ground plane.
struct Walker {
  std::uint32_t id = 0;
  cv::Point2d position;
  cv::Point2d velocity;
  cv::Point2d goal;           ///< where the way leads out of the scene
  double desiredSpeed = 0.0;  ///< m/s
  /// Whom the person keeps together with: walkers of the same company share goal and speed.
  int company = 0;
  /// The group that an onlooker would see, after the company changed only once the distance shows
  /// it; 0 for a person alone. Groups may have one member left in the scene.
  int group = 0;
  bool isCatchingUp = false;  ///< on the way to a company that it joins
  /// Where the person stands or goes to stand; none while it walks through.
  std::optional<cv::Point2d> post;
  cv::Point2d sway;             ///< from the post, metres: nobody stands like a stone
  double stayUntil = 0.0;       ///< seconds; the post is left then
  bool waits = false;           ///< stands among strangers and joins nobody
  bool isQueueing = false;      ///< its post is a place in the queue
  double lastChange = -1000.0;  ///< seconds; when the person last changed groups

  /// Whether the person has come to its post.
  bool stands() const;
};

/// The acceleration of a walker by the social force model (Helbing and Molnar 1995) with the group
/// term of Moussaid et al. (2010): towards the goal at the desired speed, away from others, most
/// from those ahead, and towards the middle of the own company, so that groups walk side by side
/// and stay within talking distance. Who has a post walks there and stands. Metres per second
/// squared.
cv::Point2d socialForce(const Walker& walker, const std::vector<Walker>& all);

}  // namespace grouptracker

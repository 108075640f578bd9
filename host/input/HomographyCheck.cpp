#include "host/input/HomographyCheck.h"

#include "host/camera/BoxLifter.h"
#include "host/input/CameraFromPeople.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace grouptracker {

namespace {

constexpr double shortest = 0.6;           // m; children count
constexpr double tallest = 3.0;            // m; tall boxes do, too
constexpr double clearlyGood = 0.8;        // of all boxes
constexpr std::size_t mostLooks = 1000;    // boxes
constexpr std::size_t fewestToJudge = 20;  // boxes

bool isHuman(const kelAbstractDataCalibration& camera, const cv::Rect2d& box) {
  const auto foot = liftFoot(camera, box);
  const auto body = foot ? liftBox(camera, box, *foot) : std::nullopt;
  const double height = body ? std::abs(static_cast<double>(body->b2) - body->b5) : 0.0;
  return height > shortest && height < tallest;
}

double humanShare(const kelAbstractDataCalibration& camera, const std::vector<cv::Rect2d>& boxes) {
  const auto count = std::count_if(boxes.begin(), boxes.end(), [&camera](const cv::Rect2d& box) {
    return isHuman(camera, box);
  });
  return static_cast<double>(count) / static_cast<double>(boxes.size());
}

}  // namespace

std::optional<std::string> homographyDoubt(ObservationTable& people, const cv::Matx33d& homography,
                                           const std::optional<cv::Size>& imageSize) {
  std::vector<cv::Rect2d> boxes;
  cv::Point2d farthest;
  people.visit([&](const ObservationRow& row) {
    if (const auto& box = row.observation.box2D) {
      farthest = {std::max(farthest.x, box->x + box->width),
                  std::max(farthest.y, box->y + box->height)};
      if (boxes.size() < mostLooks) {
        boxes.push_back(*box);
      }
    }
  });
  if (boxes.size() < fewestToJudge) {
    return std::nullopt;
  }
  const cv::Matx33d exchange(0.0, 1.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0);
  const double share = humanShare(*cameraOf(homography, imageSize, farthest), boxes);
  const double exchanged = humanShare(*cameraOf(homography * exchange, imageSize, farthest), boxes);
  if (share >= 0.5) {
    return std::nullopt;
  }
  if (exchanged > clearlyGood) {
    return fmt::format(
        "through the homography {:.0f} % of the people are of human size, with column and row "
        "exchanged {:.0f} %: see --homography-order",
        100.0 * share, 100.0 * exchanged);
  }
  return fmt::format(
      "through the homography {:.0f} % of the people are of human size: does it belong to another "
      "view, or to other units?",
      100.0 * share);
}

}  // namespace grouptracker

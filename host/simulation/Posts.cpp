#include "host/simulation/Posts.h"

#include <opencv2/core/cvdef.h>

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

const cv::Point2d counter(-8.0, 27.0);   // m
constexpr double spacing = 0.85;         // m
constexpr double shortestService = 5.0;  // s
constexpr double longestService = 14.0;  // s

}  // namespace

void formCircle(std::vector<Walker*> members, const cv::Point2d& middle, RandomNumbers& random) {
  constexpr double nearest = 0.8;   // m between neighbours
  constexpr double farthest = 1.1;  // m
  const auto angleOf = [&middle](const Walker* walker) {
    return std::atan2(walker->position.y - middle.y, walker->position.x - middle.x);
  };
  std::stable_sort(members.begin(), members.end(),
                   [&](const Walker* a, const Walker* b) { return angleOf(a) < angleOf(b); });
  const double turn = 2.0 * CV_PI / static_cast<double>(members.size());
  const double chord = random.uniform(nearest, farthest);
  const double radius = members.size() > 1 ? chord / (2.0 * std::sin(turn / 2.0)) : 0.0;
  double angle = angleOf(members.front());
  for (Walker* const walker : members) {
    walker->post = middle + cv::Point2d(std::cos(angle), std::sin(angle)) * radius;
    angle += turn;
  }
}

cv::Point2d middleOf(const std::vector<Walker*>& members) {
  cv::Point2d sum;
  for (const Walker* const walker : members) {
    sum += walker->post.value_or(walker->position);
  }
  return sum * (1.0 / static_cast<double>(members.size()));
}

cv::Point2d Queue::place(int index) {
  return counter + cv::Point2d(index * spacing, 0.0);
}

void Queue::moveUp(std::vector<Walker>& walkers, double time, RandomNumbers& random) {
  int index = 0;
  for (Walker& walker : walkers) {
    if (!walker.isQueueing) {
      continue;
    }
    if (index == 0 && walker.stands() && time >= m_nextServed) {
      walker.isQueueing = false;
      walker.post.reset();
      m_nextServed = time + random.uniform(shortestService, longestService);
      continue;
    }
    walker.post = place(index++);
  }
}

}  // namespace grouptracker

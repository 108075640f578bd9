#include "host/simulation/Queue.h"

namespace grouptracker {

namespace {

const cv::Point2d counter(-8.0, 27.0);   // m
constexpr double spacing = 0.85;         // m
constexpr double shortestService = 5.0;  // s
constexpr double longestService = 14.0;  // s

}  // namespace

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

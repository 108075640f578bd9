#include "host/simulation/Crowd.h"

#include "host/simulation/Posts.h"
#include "host/simulation/Walker.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double longestStep = 0.05;   // s
constexpr double goalRadius = 3.0;     // m
constexpr double fastestShare = 1.5;   // of the desired speed
constexpr double shoulderWidth = 0.7;  // m between people who come side by side
constexpr double scatter = 0.1;        // m, of the places at which they come
constexpr double swayReach = 0.05;     // m, deviation of how far people sway who stand
constexpr double swayTime = 3.0;       // s after which they sway another way

void move(Walker& walker, const cv::Point2d& force, double seconds) {
  walker.velocity += force * seconds;
  const double fastest = fastestShare * walker.desiredSpeed;
  const double speed = cv::norm(walker.velocity);
  if (speed > fastest) {
    walker.velocity *= fastest / speed;
  }
  walker.position += walker.velocity * seconds;
}

}  // namespace

void Crowd::advanceTo(double time) {
  const int steps = static_cast<int>(std::ceil((time - m_time) / longestStep));
  const double begin = m_time;
  for (int i = 1; i <= steps; ++i) {
    const double next = begin + (time - begin) * i / steps;
    step(next - m_time);
    m_time = next;
  }
}

void Crowd::step(double seconds) {
  while (m_nextArrival < m_arrivals.size() && m_arrivals[m_nextArrival].time <= m_time) {
    letIn(m_arrivals[m_nextArrival++]);
  }
  letStand(seconds);
  std::vector<cv::Point2d> forces;
  forces.reserve(m_walkers.size());
  for (const Walker& walker : m_walkers) {
    forces.push_back(socialForce(walker, m_walkers));
  }
  for (std::size_t i = 0; i < m_walkers.size(); ++i) {
    move(m_walkers[i], forces[i], seconds);
  }
  std::erase_if(m_walkers, [](const Walker& walker) {
    return !walker.post && cv::norm(walker.goal - walker.position) < goalRadius;
  });
}

void Crowd::letStand(double seconds) {
  m_queue.moveUp(m_walkers, m_time, m_random);
  const double swayStep = swayReach * std::sqrt(2.0 * seconds / swayTime);
  for (Walker& walker : m_walkers) {
    if (!walker.post) {
      continue;
    }
    if (!walker.isQueueing && m_time >= walker.stayUntil) {
      walker.post.reset();
      continue;
    }
    walker.sway *= 1.0 - seconds / swayTime;
    walker.sway += cv::Point2d(m_random.normal(swayStep), m_random.normal(swayStep));
  }
}

void Crowd::letIn(const Arrival& arrival) {
  const cv::Point2d way = arrival.to - arrival.from;
  const cv::Point2d direction = way * (1.0 / cv::norm(way));
  const cv::Point2d aside(-direction.y, direction.x);
  const std::size_t firstWalker = m_walkers.size();
  const int company = newCompany();
  const int group = arrival.size > 1 ? newGroup() : 0;
  for (int i = 0; i < arrival.size; ++i) {
    const double place = (i - (arrival.size - 1) / 2.0) * shoulderWidth + m_random.normal(scatter);
    Walker walker;
    walker.id = ++m_lastId;
    walker.position = arrival.from + aside * place + direction * m_random.normal(scatter);
    walker.velocity = direction * arrival.speed;
    walker.goal = arrival.to;
    walker.desiredSpeed = arrival.speed;
    walker.company = company;
    walker.group = group;
    m_walkers.push_back(walker);
  }
  if (arrival.stay) {
    settle(arrival, firstWalker);
  }
}

void Crowd::settle(const Arrival& arrival, std::size_t firstWalker) {
  const Stay& stay = *arrival.stay;
  const auto queueing = std::count_if(m_walkers.begin(), m_walkers.end(),
                                      [](const Walker& walker) { return walker.isQueueing; });
  if (stay.kind == Stay::Kind::queue && queueing >= Queue::longest) {
    return;  // walks on
  }
  std::vector<Walker*> members;
  for (std::size_t i = firstWalker; i < m_walkers.size(); ++i) {
    members.push_back(&m_walkers[i]);
  }
  if (stay.kind == Stay::Kind::talk) {
    formCircle(members, stay.place, m_random);
  }
  for (Walker* const walker : members) {
    walker->post = walker->post.value_or(stay.place);
    walker->stayUntil = stay.until;
    walker->waits = stay.kind != Stay::Kind::talk;
    walker->isQueueing = stay.kind == Stay::Kind::queue;
    if (stay.isThere) {
      walker->position = *walker->post;
      walker->velocity = {};
    }
  }
}

}  // namespace grouptracker

#pragma once

#include "host/simulation/Arrivals.h"
#include "host/simulation/Posts.h"
#include "host/simulation/Walker.h"

#include <cstddef>
#include <vector>

namespace grouptracker {

/// Everybody who is in the simulated scene at a moment. People come by plan, walk by the social
/// force model, stand where they have a stay, and go when they reach their goal.
class Crowd {
 public:
  /// The clock starts `warmUp` seconds before the first frame.
  Crowd(std::vector<Arrival> arrivals, RandomNumbers& random)
      : m_arrivals(std::move(arrivals)), m_random(random) {}

  /// Lets time go on, in steps that are short enough for the model.
  void advanceTo(double time);

  double time() const { return m_time; }
  /// In ascending order of ids.
  const std::vector<Walker>& walkers() const { return m_walkers; }
  std::vector<Walker>& walkers() { return m_walkers; }
  /// Numbers for new companies and groups, from 1 on.
  int newCompany() { return ++m_lastCompany; }
  int newGroup() { return ++m_lastGroup; }

 private:
  void step(double seconds);
  void letIn(const Arrival& arrival);
  void settle(const Arrival& arrival, std::size_t firstWalker);
  void letStand(double seconds);

  std::vector<Arrival> m_arrivals;
  RandomNumbers& m_random;
  std::vector<Walker> m_walkers;
  Queue m_queue;
  std::size_t m_nextArrival = 0;
  double m_time = -warmUp;
  std::uint32_t m_lastId = 0;
  int m_lastCompany = 0;
  int m_lastGroup = 0;
};

}  // namespace grouptracker

#include "host/base/RandomNumbers.h"
#include "host/simulation/Crowd.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

double length(const cv::Point2d& v) {
  return std::hypot(v.x, v.y);
}

/// The smallest distance between any two walkers until a moment.
double closest(Crowd& crowd, double until) {
  double smallest = 1e9;
  for (double time = crowd.time(); time < until; time += 0.1) {
    crowd.advanceTo(time);
    const auto& walkers = crowd.walkers();
    for (std::size_t a = 0; a < walkers.size(); ++a) {
      for (std::size_t b = a + 1; b < walkers.size(); ++b) {
        smallest = std::min(smallest, length(walkers[a].position - walkers[b].position));
      }
    }
  }
  return smallest;
}

TEST(RandomNumbers, AreTheSameOnEveryMachine) {
  RandomNumbers random(5489);  // the seed for which the language gives the engine's numbers
  EXPECT_EQ(random.uniform(0.0, 1.0), 7087053118299861.0 / 9007199254740992.0);
}

TEST(RandomNumbers, AreNormalWithTheDeviationAskedFor) {
  RandomNumbers random(1);
  double sum = 0.0;
  double squares = 0.0;
  constexpr int count = 20000;
  for (int i = 0; i < count; ++i) {
    const double number = random.normal(0.5);
    sum += number;
    squares += number * number;
  }
  EXPECT_NEAR(sum / count, 0.0, 0.02);
  EXPECT_NEAR(std::sqrt(squares / count), 0.5, 0.02);
}

TEST(Crowd, PeopleWalkAtTheirSpeedAndLeaveAtTheirGoal) {
  RandomNumbers random(1);
  Crowd crowd({{0.0, 1, {-17, 12}, {17, 12}, 1.3}}, random);
  crowd.advanceTo(10.0);
  ASSERT_EQ(crowd.walkers().size(), 1U);
  EXPECT_NEAR(crowd.walkers()[0].position.x, -4.0, 0.5);
  crowd.advanceTo(30.0);
  EXPECT_TRUE(crowd.walkers().empty());
}

TEST(Crowd, StrangersWhoMeetGiveWay) {
  RandomNumbers random(1);
  Crowd crowd({{0.0, 1, {-17, 12}, {17, 12}, 1.3}, {0.0, 1, {17, 12}, {-17, 12}, 1.3}}, random);
  EXPECT_GT(closest(crowd, 20.0), 0.4);
}

TEST(Crowd, AGroupKeepsTogetherThroughOncomingPeople) {
  //  -> -> ->   group of four
  //  <- <- <-   four people alone, towards them
  RandomNumbers random(2);
  std::vector<Arrival> arrivals{{0.0, 4, {-17, 12}, {17, 12}, 1.2}};
  for (const double y : {10.5, 11.5, 12.5, 13.5}) {
    arrivals.push_back({0.0, 1, {17, y}, {-17, y}, 1.3});
  }
  Crowd crowd(arrivals, random);
  crowd.advanceTo(22.0);
  cv::Point2d first;
  int members = 0;
  for (const Walker& walker : crowd.walkers()) {
    if (walker.group != 0) {
      first = members++ == 0 ? walker.position : first;
      EXPECT_LT(length(walker.position - first), 4.0);
    }
  }
  EXPECT_EQ(members, 4);
}

}  // namespace

}  // namespace grouptracker

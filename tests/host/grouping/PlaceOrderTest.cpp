#include "host/grouping/PlaceOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace grouptracker {

namespace {

/// People in a hall of a width and a depth, metres; some stand at the same place.
std::vector<PersonAt> peopleIn(double width, double depth) {
  std::mt19937 random(3);
  const auto number = [&random](double most) {
    return std::floor(most * static_cast<double>(random()) / 429496729.6) / 10;
  };
  std::vector<PersonAt> people;
  for (PersonId id = 1; id <= 60; ++id) {
    people.push_back({id, {number(width), number(depth)}});
  }
  return people;
}

std::vector<std::size_t> allNear(const std::vector<PersonAt>& people, std::size_t person,
                                 double reach) {
  std::vector<std::size_t> near;
  for (std::size_t other = 0; other < people.size(); ++other) {
    const cv::Point2d way = people[other].place - people[person].place;
    if (other != person && std::abs(way.x) < reach && std::abs(way.y) < reach) {
      near.push_back(other);
    }
  }
  return near;
}

TEST(PlaceOrder, FindsAllWhoAreNearHoweverThePeopleAreSpread) {
  for (const auto& people : {peopleIn(30, 30), peopleIn(3, 50), peopleIn(50, 0), peopleIn(0, 0)}) {
    const PlaceOrder order(people);
    for (std::size_t person = 0; person < people.size(); ++person) {
      std::vector<std::size_t> near;
      order.forEachNear(
          person, [] { return 6.0; }, [&near](std::size_t other) { near.push_back(other); });
      std::sort(near.begin(), near.end());
      EXPECT_EQ(near, allNear(people, person, 6.0));
    }
  }
}

TEST(PlaceOrder, FindsTheNearestWhenTheReachShrinksToIt) {
  const auto people = peopleIn(20, 40);
  const PlaceOrder order(people);
  for (std::size_t person = 0; person < people.size(); ++person) {
    const auto distanceTo = [&](std::size_t other) {
      const cv::Point2d way = people[other].place - people[person].place;
      return std::hypot(way.x, way.y);
    };
    double nearest = 1e9;
    order.forEachNear(
        person, [&nearest] { return nearest; },
        [&](std::size_t other) { nearest = std::min(nearest, distanceTo(other)); });
    double expected = 1e9;
    for (const std::size_t other : allNear(people, person, 1e9)) {
      expected = std::min(expected, distanceTo(other));
    }
    EXPECT_EQ(nearest, expected);
  }
}

}  // namespace

}  // namespace grouptracker

#include "host/grouping/PairEvidence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <vector>

namespace grouptracker {

namespace {

constexpr double tickLength = 0.4;    // seconds
constexpr std::size_t lookAhead = 5;  // ticks
constexpr double window = 6.0;        // seconds before a tick

/// People on round ways of different sizes and speeds, some of them out of view now and then.
std::vector<PersonAt> peopleAt(double time) {
  std::vector<PersonAt> people;
  for (PersonId person = 1; person <= 12; ++person) {
    const double way = 2.0 + 0.7 * person;
    const double angle = time * (0.9 / way) * (person % 2 == 0 ? 1.0 : -1.0) + person;
    const bool isHidden = person % 4 == 0 && std::fmod(time + person, 37.0) < 3.0;
    if (!isHidden) {
      people.push_back({person, {way * std::cos(angle), way * std::sin(angle)}});
    }
  }
  return people;
}

/// What two persons did at the ticks at which both were in view, summed up plainly.
struct PlainPair {
  double meanDistance = 0.0;
  double nearShare = 0.0;
};

PlainPair plainly(const std::vector<std::vector<PersonAt>>& ticks, std::size_t decided, PersonId a,
                  PersonId b) {
  const auto placeOf = [](const std::vector<PersonAt>& people, PersonId id) {
    const auto found = std::find_if(people.begin(), people.end(),
                                    [id](const PersonAt& person) { return person.person == id; });
    return found == people.end() ? std::nullopt : std::optional(found->place);
  };
  double all = 0.0;
  double near = 0.0;
  double inWindow = 0.0;
  double metres = 0.0;
  std::optional<std::size_t> last;
  for (std::size_t tick = 0; tick < ticks.size(); ++tick) {
    const auto placeOfA = placeOf(ticks[tick], a);
    const auto placeOfB = placeOf(ticks[tick], b);
    if (!placeOfA || !placeOfB) {
      continue;
    }
    const double lasts =
        std::min(1.0, tickLength * static_cast<double>(tick - last.value_or(tick - 1)));
    last = tick;
    const double distance = distanceBetween(*placeOfA, *placeOfB);
    all += lasts;
    near += distance < 2.0 ? lasts : 0.0;
    const double age = tickLength * (static_cast<double>(decided) - static_cast<double>(tick));
    inWindow += age < window + 1e-3 ? lasts : 0.0;
    metres += age < window + 1e-3 ? lasts * distance : 0.0;
  }
  return {metres / inWindow, near / all};
}

TEST(PairEvidence, SumsUpEachPairAlsoWhereItPassedOverTicksOnWhichThePairWasTooFarApart) {
  PairEvidence evidence(EvidenceModel::builtIn(), lookAhead * tickLength);
  evidence.keepFeatures();
  std::vector<std::vector<PersonAt>> ticks;
  std::map<bool, int> pairs;  // by whether they are near enough to be judged
  for (std::size_t tick = 0; tick < 600; ++tick) {
    const double time = tickLength * static_cast<double>(tick);
    ticks.push_back(peopleAt(time));
    evidence.add(time, ticks.back());
    if (tick < lookAhead) {
      continue;
    }
    for (const PairBelief& pair : evidence.decide().pairs) {
      const PlainPair plain = plainly(ticks, tick - lookAhead, pair.a, pair.b);
      if (pair.distance > 10.0) {
        continue;
      }
      ++pairs[pair.features != nullptr];
      ASSERT_EQ(pair.features != nullptr, plain.meanDistance < 5.0) << tick;
      if (pair.features != nullptr) {
        ASSERT_NEAR(pair.features->meanDistance, plain.meanDistance, 1e-9) << tick;
        ASSERT_NEAR(pair.features->nearShare, plain.nearShare, 1e-9) << tick;
      }
    }
  }
  EXPECT_GT(std::min(pairs[true], pairs[false]), 3000);
}

}  // namespace

}  // namespace grouptracker

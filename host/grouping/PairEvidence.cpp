#include "host/grouping/PairEvidence.h"

#include "host/grouping/PeopleFrame.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace grouptracker {

namespace {

constexpr double watched = 6.0;            // metres at which two persons begin to be watched
constexpr double farApart = 10.0;          // metres at which a pair begins to be forgotten
constexpr double tooFar = 5.0;             // metres of mean distance at which nobody is together
constexpr double surelyTooFar = 5.05;      // metres; more than rounding adds up to
constexpr double longestLag = 60.0;        // seconds that a history may lag behind a track
constexpr double startMoments = 1.0;       // seconds of a recording in which arrivals are unknown
constexpr double pairMemory = 30.0;        // seconds apart or unseen
constexpr double personMemory = 60.0;      // seconds out of view
constexpr double trackMemory = 600.0;      // seconds of a track that are kept
constexpr double cleaningInterval = 10.0;  // seconds between looks for what is to be forgotten

constexpr double usualReach = 8.0;    // metres within which most have their five nearest
constexpr double roomy = 1.0 + 1e-9;  // more than rounding makes of a squared distance

/// Whether two are nearer than some metres. May also say so of those who are as far by rounding.
bool areNearer(const cv::Point2d& a, const cv::Point2d& b, double metres) {
  const cv::Point2d way = a - b;
  return way.dot(way) < roomy * metres * metres;
}

bool isOver(double time, double lastNear) {
  return lastNear < time - pairMemory;
}

/// Whether the mean distance of two persons in the window is `tooFar`. The distance of their mean
/// places is never longer, and costs a person, not a pair, a look at the window.
bool areSurelyTooFar(const std::optional<MeanStay>& a, const std::optional<MeanStay>& b) {
  if (!a || !b || a->first != b->first || a->last != b->last) {
    return false;
  }
  return !areNearer(a->mean, b->mean, surelyTooFar);
}

/// Those of one person as far as a limit, metres.
Surroundings surroundingsOf(std::size_t person, const std::vector<PersonAt>& people,
                            const PlaceOrder& order, double limit) {
  Surroundings around;
  const cv::Point2d& place = people[person].place;
  order.forEachNear(
      person, [&] { return std::min(limit, around.reach()); },
      [&](std::size_t other) {
        if (areNearer(place, people[other].place, around.reach())) {
          around.add(distanceBetween(place, people[other].place));
        }
      });
  return around;
}

/// For each of some people.
std::vector<Surroundings> surroundingsOf(const std::vector<PersonAt>& people,
                                         const PlaceOrder& order) {
  std::vector<Surroundings> around(people.size());
  for (std::size_t i = 0; i < people.size(); ++i) {
    around[i] = surroundingsOf(i, people, order, usualReach);
    if (around[i].reach() > usualReach) {
      around[i] = surroundingsOf(i, people, order, std::numeric_limits<double>::infinity());
    }
  }
  return around;
}

}  // namespace

void PairEvidence::add(double time, const std::vector<PersonAt>& people) {
  const double sinceTick =
      m_hasStarted ? std::min(ticks::longestLength, time - m_last) : ticks::usualLength;
  if (!m_hasStarted) {
    m_hasStarted = true;
    m_start = time;
  }
  m_last = time;
  Tick tick{time, people, personsAt(time, people), PlaceOrder(people)};
  const std::vector<Surroundings> around = surroundingsOf(people, tick.order);
  for (std::size_t i = 0; i < people.size(); ++i) {
    tick.persons[i]->track.add({time, sinceTick, people[i].place, {}, 0.0, around[i]});
  }
  m_undecided.push_back(std::move(tick));
}

/// Those who are in view, in their order, which is that of all persons.
std::vector<PairEvidence::Person*> PairEvidence::personsAt(double time,
                                                           const std::vector<PersonAt>& people) {
  std::vector<Person*> persons;
  persons.reserve(people.size());
  auto known = m_persons.begin();
  for (const PersonAt& person : people) {
    while (known != m_persons.end() && known->first < person.person) {
      ++known;
    }
    if (known == m_persons.end() || known->first != person.person) {
      known = m_persons.emplace_hint(known, person.person,
                                     Person{PersonTrack(time, person.place, m_lookAhead > 0.0)});
    }
    persons.push_back(&known->second);
  }
  return persons;
}

TickBeliefs PairEvidence::decide() {
  Tick tick = std::move(m_undecided.front());
  m_undecided.pop_front();
  m_decided = tick.time;
  for (std::size_t i = 0; i < tick.persons.size(); ++i) {
    tick.persons[i]->decided = tick.time;
    tick.persons[i]->index = i;
    tick.persons[i]->stay = tick.persons[i]->track.stayFrom(PairHistory::windowStart(tick.time));
  }
  std::vector<PairBelief> beliefs;
  beliefs.reserve(m_pairs.size());
  WatchedPairs newPairs;
  Others others;
  auto next = m_pairs.begin();  // goes along with the people, who come in the same order
  for (std::size_t a = 0; a < tick.people.size(); ++a) {
    others.clear();
    addKnownOthers(tick.people[a].person, next, others);
    addNearOthers(a, tick, others);
    for (const auto& [b, known] : others) {
      const double distance = distanceBetween(tick.people[a].place, tick.people[b].place);
      WatchedPair newPair{{tick.people[a].person, tick.people[b].person}, tick.persons[b]};
      WatchedPair& pair = known != nullptr ? *known : newPair;
      if (isWatched(tick.time, distance, pair)) {
        beliefs.push_back(judge(tick, a, b, distance, pair));
      }
      if (newPair.history) {
        newPairs.push_back(std::move(newPair));
      }
    }
  }
  watchNewPairs(std::move(newPairs));
  forget(tick.time);
  return {tick.time, std::move(tick.people), std::move(beliefs)};
}

/// Those in view with whom somebody is watched, ascending. `next`: pairs before it are those of
/// lower ids; becomes the first of a higher id.
void PairEvidence::addKnownOthers(PersonId a, WatchedPairs::iterator& next, Others& others) const {
  for (; next != m_pairs.end() && next->key.first <= a; ++next) {
    if (next->key.first == a && next->b->decided == m_decided) {
      others.push_back({next->b->index, &*next});
    }
  }
}

/// Adds those who come near somebody to those who are known, and keeps all in ascending order.
void PairEvidence::addNearOthers(std::size_t a, const Tick& tick, Others& others) {
  const auto isBefore = [](const Other& other, std::size_t index) { return other.index < index; };
  tick.order.forEachNear(
      a, [] { return watched; },
      [&](std::size_t b) {
        if (b < a || !areNearer(tick.people[a].place, tick.people[b].place, watched)) {
          return;
        }
        const auto place = std::lower_bound(others.begin(), others.end(), b, isBefore);
        if (place == others.end() || place->index != b) {
          others.insert(place, {b, nullptr});
        }
      });
}

/// Begins to watch a pair that comes near, and no longer watches one that was apart for long.
bool PairEvidence::isWatched(double time, double distance, WatchedPair& pair) {
  if (pair.history && isOver(time, pair.lastNear)) {
    pair.history.reset();
  }
  if (!pair.history && distance < watched) {
    pair.history = std::make_unique<PairHistory>();
    pair.chain = {};
  }
  if (pair.history && distance <= farApart) {
    pair.lastNear = time;
  }
  return pair.history != nullptr;
}

PairBelief PairEvidence::judge(const Tick& tick, std::size_t a, std::size_t b, double distance,
                               WatchedPair& pair) {
  PairBelief result{
      tick.people[a].person, tick.people[b].person, a, b, distance, 0.0, 0.0, nullptr};
  result.evidence = -TogetherChain::largestEvidence;
  bool isFresh = false;
  const Person& personA = *tick.persons[a];
  const Person& personB = *tick.persons[b];
  const bool isSkipped = pair.chain.hasStarted() && areSurelyTooFar(personA.stay, personB.stay);
  if (pair.lastNear == m_decided && !isSkipped) {
    PairHistory& history = *pair.history;
    history.moveTo(m_decided, personA.track, personB.track);
    isFresh = history.firstTime() == m_decided;
    if (history.meanDistance() < tooFar) {
      PairFeatures features = history.features();
      markArrivals(personA.track, personB.track, features);
      result.evidence = m_model.logOdds(features);
      result.features = m_keepsFeatures ? std::make_shared<PairFeatures>(features) : nullptr;
    }
  }
  result.belief = pair.chain.next(m_decided, result.evidence, isFresh, m_passage);
  return result;
}

void PairEvidence::watchNewPairs(WatchedPairs newPairs) {
  if (newPairs.empty()) {
    return;
  }
  const auto middle = static_cast<std::ptrdiff_t>(m_pairs.size());
  std::move(newPairs.begin(), newPairs.end(), std::back_inserter(m_pairs));
  std::inplace_merge(m_pairs.begin(), m_pairs.begin() + middle, m_pairs.end(),
                     [](const WatchedPair& a, const WatchedPair& b) { return a.key < b.key; });
}

std::optional<LatestMoments> PairEvidence::latestOf(PersonId a, PersonId b) {
  const PairKey key{a, b};
  const auto found = std::lower_bound(
      m_pairs.begin(), m_pairs.end(), key,
      [](const WatchedPair& watched, const PairKey& wanted) { return watched.key < wanted; });
  const bool isNear =
      found != m_pairs.end() && found->key == key && found->history && found->lastNear == m_decided;
  if (!isNear) {
    return std::nullopt;
  }
  found->history->moveTo(m_decided, trackOfA(*found), found->b->track);
  return found->history->latest();
}

const PersonTrack& PairEvidence::trackOfA(const WatchedPair& pair) const {
  return m_persons.at(pair.key.first).track;
}

void PairEvidence::markArrivals(const PersonTrack& a, const PersonTrack& b,
                                PairFeatures& features) const {
  features.arrivalGap = std::abs(a.firstSeen() - b.firstSeen());
  if (std::min(a.firstSeen(), b.firstSeen()) - m_start < startMoments) {
    features.start = 1.0;
    return;
  }
  features.appeared = std::max(a.stoodAtFirst(), b.stoodAtFirst());
}

void PairEvidence::forget(double time) {
  if (time < m_nextCleaning) {
    return;
  }
  m_nextCleaning = time + cleaningInterval;
  std::erase_if(m_pairs, [time](const WatchedPair& watched) {
    return !watched.history || isOver(time, watched.lastNear);
  });
  for (const WatchedPair& pair : m_pairs) {  // before tracks forget what histories want
    if (pair.history->lastTime() < time - longestLag) {
      pair.history->catchUp(time, trackOfA(pair), pair.b->track);
    }
  }
  std::erase_if(m_persons, [time](const auto& person) {
    return person.second.track.lastSeen() < time - personMemory;
  });
  for (auto& [id, person] : m_persons) {
    person.track.forgetBefore(time - trackMemory);
  }
}

}  // namespace grouptracker

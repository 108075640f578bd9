#include "host/grouping/PairEvidence.h"

#include "host/grouping/PeopleFrame.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace grouptracker {

namespace {

constexpr double watched = 6.0;            // metres at which two persons begin to be watched
constexpr double farApart = 10.0;          // metres at which a pair begins to be forgotten
constexpr double tooFar = 5.0;             // metres of mean distance at which nobody is together
constexpr double startMoments = 1.0;       // seconds of a recording in which arrivals are unknown
constexpr double pairMemory = 30.0;        // seconds apart or unseen
constexpr double personMemory = 60.0;      // seconds out of view
constexpr double trackMemory = 600.0;      // seconds of a track that are kept
constexpr double cleaningInterval = 10.0;  // seconds between looks for what is to be forgotten

bool isOver(double time, double lastNear) {
  return lastNear < time - pairMemory;
}

/// For each of some people.
std::vector<Surroundings> surroundingsOf(const std::vector<PersonAt>& people,
                                         const PlaceOrder& order) {
  std::vector<Surroundings> around(people.size());
  for (std::size_t i = 0; i < people.size(); ++i) {
    Surroundings& own = around[i];
    order.forEachNear(
        i, [&own] { return own.reach(); },
        [&](std::size_t other) { own.add(distanceBetween(people[i].place, people[other].place)); });
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
  }
  std::vector<PairBelief> beliefs;
  beliefs.reserve(m_pairs.size());
  WatchedPairs newPairs;
  Others others;
  auto known = m_pairs.begin();  // goes along with the people, who come in the same order
  for (std::size_t a = 0; a < tick.people.size(); ++a) {
    others.clear();
    addKnownOthers(tick.people[a].person, known, others);
    addNearOthers(a, tick, others);
    for (const auto& [b, watchedPair] : others) {
      const double distance = distanceBetween(tick.people[a].place, tick.people[b].place);
      std::unique_ptr<Pair> newPair;
      std::unique_ptr<Pair>& pair = watchedPair != nullptr ? watchedPair->pair : newPair;
      if (isWatched(tick.time, distance, pair)) {
        beliefs.push_back(judge(tick, a, b, distance, *pair));
      }
      if (newPair) {
        const PairKey key{tick.people[a].person, tick.people[b].person};
        newPairs.push_back({key, tick.persons[b], std::move(newPair)});
      }
    }
  }
  watchNewPairs(std::move(newPairs));
  forget(tick.time);
  return {tick.time, std::move(tick.people), std::move(beliefs)};
}

/// Those in view with whom somebody is watched, ascending. `known`: pairs before it are those of
/// lower ids; becomes the first of a higher id.
void PairEvidence::addKnownOthers(PersonId a, WatchedPairs::iterator& known, Others& others) const {
  for (; known != m_pairs.end() && known->key.first <= a; ++known) {
    if (known->key.first == a && known->b->decided == m_decided) {
      others.push_back({known->b->index, &*known});
    }
  }
}

/// Adds those who come near somebody to those who are known, and keeps all in ascending order.
void PairEvidence::addNearOthers(std::size_t a, const Tick& tick, Others& others) {
  const auto isBefore = [](const Other& other, std::size_t index) { return other.index < index; };
  tick.order.forEachNear(
      a, [] { return watched; },
      [&](std::size_t b) {
        if (b < a) {
          return;
        }
        const auto place = std::lower_bound(others.begin(), others.end(), b, isBefore);
        if (place == others.end() || place->index != b) {
          others.insert(place, {b, nullptr});
        }
      });
}

/// Begins to watch a pair that comes near, and no longer watches one that was apart for long.
bool PairEvidence::isWatched(double time, double distance, std::unique_ptr<Pair>& pair) {
  if (pair && isOver(time, pair->lastNear)) {
    pair.reset();
  }
  if (!pair && distance < watched) {
    pair = std::make_unique<Pair>();
  }
  if (pair && distance <= farApart) {
    pair->lastNear = time;
  }
  return pair != nullptr;
}

PairBelief PairEvidence::judge(const Tick& tick, std::size_t a, std::size_t b, double distance,
                               Pair& pair) {
  PairBelief result{
      tick.people[a].person, tick.people[b].person, a, b, distance, 0.0, 0.0, nullptr};
  result.evidence = -TogetherChain::largestEvidence;
  bool isFresh = false;
  if (pair.lastNear == m_decided) {
    const PersonTrack& trackOfA = tick.persons[a]->track;
    const PersonTrack& trackOfB = tick.persons[b]->track;
    pair.history.moveTo(m_decided, trackOfA, trackOfB);
    isFresh = pair.history.firstTime() == m_decided;
    if (pair.history.meanDistance() < tooFar) {
      PairFeatures features = pair.history.features();
      markArrivals(trackOfA, trackOfB, features);
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

std::optional<LatestMoments> PairEvidence::latestOf(PersonId a, PersonId b) const {
  const PairKey key{a, b};
  const auto found = std::lower_bound(
      m_pairs.begin(), m_pairs.end(), key,
      [](const WatchedPair& watched, const PairKey& wanted) { return watched.key < wanted; });
  const bool isNear = found != m_pairs.end() && found->key == key && found->pair &&
                      found->pair->lastNear == m_decided;
  return isNear ? std::optional(found->pair->history.latest()) : std::nullopt;
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
    return !watched.pair || isOver(time, watched.pair->lastNear);
  });
  std::erase_if(m_persons, [time](const auto& person) {
    return person.second.track.lastSeen() < time - personMemory;
  });
  for (auto& [id, person] : m_persons) {
    person.track.forgetBefore(time - trackMemory);
  }
}

}  // namespace grouptracker

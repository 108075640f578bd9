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

/// No more than the distance of two places; takes less time.
double leastDistance(const cv::Point2d& a, const cv::Point2d& b) {
  return std::max(std::abs(a.x - b.x), std::abs(a.y - b.y));
}

/// For each of some people.
std::vector<Surroundings> surroundingsOf(const std::vector<PersonAt>& people) {
  std::vector<Surroundings> around(people.size());
  for (std::size_t a = 0; a < people.size(); ++a) {
    for (std::size_t b = a + 1; b < people.size(); ++b) {
      const double least = leastDistance(people[a].place, people[b].place);
      if (least < around[a].reach() || least < around[b].reach()) {
        const double distance = distanceBetween(people[a].place, people[b].place);
        around[a].add(distance);
        around[b].add(distance);
      }
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
  const std::vector<Surroundings> around = surroundingsOf(people);
  for (std::size_t i = 0; i < people.size(); ++i) {
    const PersonAt& person = people[i];
    const auto track =
        m_tracks.try_emplace(person.person, time, person.place, m_lookAhead > 0.0).first;
    track->second.add({time, sinceTick, person.place, {}, 0.0, around[i]});
  }
  m_undecided.push_back({time, people});
}

TickBeliefs PairEvidence::decide() {
  TickBeliefs beliefs{m_undecided.front().time, std::move(m_undecided.front().people), {}};
  m_undecided.pop_front();
  m_decided = beliefs.time;
  beliefs.pairs.reserve(m_pairs.size());
  const std::vector<Seen> seen = inView(beliefs.people);
  WatchedPairs newPairs;
  auto known = m_pairs.begin();  // goes along with the pairs, which come in the same order
  for (auto a = seen.begin(); a != seen.end(); ++a) {
    for (auto b = a + 1; b != seen.end(); ++b) {
      const PairKey key{a->at.person, b->at.person};
      while (known != m_pairs.end() && known->key < key) {
        ++known;
      }
      const bool isKnown = known != m_pairs.end() && known->key == key;
      if (!isKnown && leastDistance(a->at.place, b->at.place) >= watched) {
        continue;
      }
      const double distance = distanceBetween(a->at.place, b->at.place);
      std::unique_ptr<Pair> newPair;
      std::unique_ptr<Pair>& pair = isKnown ? known->pair : newPair;
      if (isWatched(beliefs.time, distance, pair)) {
        beliefs.pairs.push_back(judge(*a, *b, distance, *pair));
      }
      if (newPair) {
        newPairs.push_back({key, std::move(newPair)});
      }
    }
  }
  watchNewPairs(std::move(newPairs));
  forget(beliefs.time);
  return beliefs;
}

std::vector<PairEvidence::Seen> PairEvidence::inView(const std::vector<PersonAt>& people) const {
  std::vector<Seen> seen;
  seen.reserve(people.size());
  for (const PersonAt& person : people) {
    seen.push_back({person, seen.size(), &m_tracks.at(person.person)});
  }
  return seen;
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

PairBelief PairEvidence::judge(const Seen& a, const Seen& b, double distance, Pair& pair) const {
  PairBelief result{a.at.person, b.at.person, a.index, b.index, distance, 0.0, 0.0, nullptr};
  result.evidence = -TogetherChain::largestEvidence;
  bool isFresh = false;
  if (pair.lastNear == m_decided) {
    pair.history.update(*a.track, *b.track);
    pair.history.moveTo(m_decided);
    isFresh = pair.history.firstTime() == m_decided;
    if (pair.history.meanDistance() < tooFar) {
      PairFeatures features = pair.history.features();
      markArrivals(*a.track, *b.track, features);
      result.evidence = m_model.logOdds(features);
      result.features = m_keepsFeatures ? std::make_shared<PairFeatures>(features) : nullptr;
    }
  }
  result.belief = pair.chain.next(m_decided, result.evidence, isFresh);
  return result;
}

void PairEvidence::watchNewPairs(WatchedPairs newPairs) {
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
  std::erase_if(m_tracks, [time](const auto& track) {
    return track.second.lastSeen() < time - personMemory;
  });
  for (auto& [person, track] : m_tracks) {
    track.forgetBefore(time - trackMemory);
  }
}

}  // namespace grouptracker

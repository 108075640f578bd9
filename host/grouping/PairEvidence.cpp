#include "host/grouping/PairEvidence.h"

#include "host/grouping/PeopleFrame.h"

#include <algorithm>
#include <cmath>
#include <limits>

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
constexpr double surroundingRadius = 3.0;  // metres

bool isOver(double time, double lastNear) {
  return lastNear < time - pairMemory;
}

Surroundings surroundingsOf(const PersonAt& person, const std::vector<PersonAt>& people) {
  Surroundings around;
  around.nearest.fill(std::numeric_limits<double>::infinity());
  for (const PersonAt& other : people) {
    if (other.person == person.person) {
      continue;
    }
    const double distance = distanceBetween(person.place, other.place);
    around.within3Metres += distance < surroundingRadius ? 1 : 0;
    if (distance < around.nearest.back()) {
      around.nearest.back() = distance;
      std::inplace_merge(around.nearest.begin(), around.nearest.end() - 1, around.nearest.end());
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
  for (const PersonAt& person : people) {
    const auto track =
        m_tracks.try_emplace(person.person, time, person.place, m_lookAhead > 0.0).first;
    track->second.add({time, sinceTick, person.place, {}, surroundingsOf(person, people)});
  }
  m_undecided.push_back({time, people});
}

TickBeliefs PairEvidence::decide() {
  TickBeliefs beliefs{m_undecided.front().time, std::move(m_undecided.front().people), {}};
  m_undecided.pop_front();
  std::vector<Seen> inView;
  for (const PersonAt& person : beliefs.people) {
    inView.push_back({person, &m_tracks.at(person.person)});
  }
  beliefs.pairs.reserve(m_pairs.size());
  for (auto a = inView.begin(); a != inView.end(); ++a) {
    for (auto b = a + 1; b != inView.end(); ++b) {
      if (Pair* const pair = watchedPair(beliefs.time, *a, *b)) {
        beliefs.pairs.push_back(judge(beliefs.time, *a, *b, *pair));
      }
    }
  }
  forget(beliefs.time);
  return beliefs;
}

/// Null while two persons have not come near each other, or were apart for long.
PairEvidence::Pair* PairEvidence::watchedPair(double time, const Seen& a, const Seen& b) {
  const double distance = distanceBetween(a.at.place, b.at.place);
  const std::uint64_t key = std::uint64_t{a.at.person} << 32U | b.at.person;
  auto pair = m_pairs.find(key);
  if (pair != m_pairs.end() && isOver(time, pair->second.lastNear)) {
    m_pairs.erase(pair);
    pair = m_pairs.end();
  }
  if (pair == m_pairs.end()) {
    if (distance >= watched) {
      return nullptr;
    }
    pair = m_pairs.try_emplace(key).first;
  }
  if (distance <= farApart) {
    pair->second.lastNear = time;
  }
  return &pair->second;
}

PairBelief PairEvidence::judge(double time, const Seen& a, const Seen& b, Pair& pair) const {
  PairBelief result{a.at.person, b.at.person, distanceBetween(a.at.place, b.at.place)};
  result.evidence = -TogetherChain::largestEvidence;
  bool isFresh = false;
  if (pair.lastNear == time) {
    pair.history.update(*a.track, *b.track);
    pair.history.moveTo(time);
    isFresh = pair.history.firstTime() == time;
    result.latest = pair.history.latest();
    if (pair.history.meanDistance() < tooFar) {
      PairFeatures features = pair.history.features();
      markArrivals(*a.track, *b.track, features);
      result.evidence = m_model.logOdds(features);
      result.features = features;
    }
  }
  result.belief = pair.chain.next(time, result.evidence, isFresh);
  return result;
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
  std::erase_if(m_pairs, [time](const auto& pair) { return isOver(time, pair.second.lastNear); });
  std::erase_if(m_tracks, [time](const auto& track) {
    return track.second.lastSeen() < time - personMemory;
  });
  for (auto& [person, track] : m_tracks) {
    track.forgetBefore(time - trackMemory);
  }
}

}  // namespace grouptracker

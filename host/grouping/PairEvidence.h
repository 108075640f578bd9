#pragma once

#include "host/grouping/EvidenceModel.h"
#include "host/grouping/PairHistory.h"
#include "host/grouping/PeopleFrame.h"
#include "host/grouping/TogetherChain.h"

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace grouptracker {

/// What is believed of two persons at one tick, and why.
struct PairBelief {
  PersonId a = 0;  ///< the lower id
  PersonId b = 0;
  double distance = 0.0;                   ///< at the tick, metres
  std::optional<PairFeatures> features{};  ///< none when they are too far apart to be together
  double evidence = 0.0;                   ///< log-odds of what was seen around the tick
  double belief = 0.0;  ///< log-odds of all so far: positive when they belong together
  std::optional<LatestMoments> latest{};  ///< none when they are far apart
};

/// Everybody at one tick, and what is believed of those who are or were near each other.
struct TickBeliefs {
  double time = 0.0;  ///< seconds
  std::vector<PersonAt> people;
  std::vector<PairBelief> pairs;  ///< in ascending order of persons
};

/// Watches people tick by tick and says of each pair whether they belong together. A tick is
/// decided once the following ones within the look-ahead are there. Pairs are watched from when
/// they first come near each other. Whoever is out of view for a minute, and pairs that are far
/// apart for half a minute, are forgotten, which bounds the memory.
class PairEvidence {
 public:
  /// `lookAhead`: seconds, 0 or more.
  PairEvidence(EvidenceModel model, double lookAhead)
      : m_model(std::move(model)), m_lookAhead(lookAhead) {}

  /// Adds a tick; times grow. Ticks beyond the look-ahead of the oldest undecided one would be seen
  /// by it: it is to be decided before.
  void add(double time, const std::vector<PersonAt>& people);
  /// Decides the oldest undecided tick with what was added so far.
  TickBeliefs decide();

 private:
  struct Tick {
    double time = 0.0;
    std::vector<PersonAt> people;
  };
  struct Pair {
    PairHistory history;
    TogetherChain chain;
    double lastNear = 0.0;  ///< when they were last less than `farApart` from each other, seconds
  };
  /// Somebody in view at the tick that is decided.
  struct Seen {
    PersonAt at;
    const PersonTrack* track = nullptr;
  };

  Pair* watchedPair(double time, const Seen& a, const Seen& b);
  PairBelief judge(double time, const Seen& a, const Seen& b, Pair& pair) const;
  void markArrivals(const PersonTrack& a, const PersonTrack& b, PairFeatures& features) const;
  void forget(double time);

  EvidenceModel m_model;
  double m_lookAhead;  ///< seconds
  bool m_hasStarted = false;
  double m_start = 0.0;  ///< of the recording, seconds
  double m_last = 0.0;   ///< the latest tick, seconds
  std::deque<Tick> m_undecided;
  std::map<PersonId, PersonTrack> m_tracks;
  std::unordered_map<std::uint64_t, Pair> m_pairs;  ///< by both persons
  double m_nextCleaning = 0.0;                      ///< seconds
};

}  // namespace grouptracker

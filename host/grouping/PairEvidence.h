#pragma once

#include "host/grouping/EvidenceModel.h"
#include "host/grouping/PairHistory.h"
#include "host/grouping/PeopleFrame.h"
#include "host/grouping/PersonTrack.h"
#include "host/grouping/PlaceOrder.h"
#include "host/grouping/TogetherChain.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace grouptracker {

/// What is believed of two persons at one tick, and why.
struct PairBelief {
  PersonId a = 0;  ///< the lower id
  PersonId b = 0;
  std::size_t indexOfA = 0;  ///< among the people of the tick
  std::size_t indexOfB = 0;
  double distance = 0.0;  ///< at the tick, metres
  double evidence = 0.0;  ///< log-odds of what was seen around the tick
  double belief = 0.0;    ///< log-odds of all so far: positive when they belong together
  /// What the evidence is made of; none when they are too far apart to be together, or when nobody
  /// asked for it.
  std::shared_ptr<const PairFeatures> features{};
};

/// Everybody at one tick, and what is believed of those who are or were near each other.
struct TickBeliefs {
  double time = 0.0;  ///< seconds
  std::vector<PersonAt> people;
  std::vector<PairBelief> pairs;  ///< in ascending order of persons
};

/// Tells what two persons, the lower id first, did in the latest moments; none when they are far
/// apart.
using LatestOf = std::function<std::optional<LatestMoments>(PersonId, PersonId)>;

/// Watches people tick by tick and says of each pair whether they belong together. A tick is
/// decided once the following ones within the look-ahead are there. Pairs are watched from when
/// they first come near each other. Whoever is out of view for a minute, and pairs that are far
/// apart for half a minute, are forgotten, which bounds the memory.
class PairEvidence {
 public:
  /// `lookAhead`: seconds, 0 or more.
  PairEvidence(EvidenceModel model, double lookAhead)
      : m_model(std::move(model)), m_lookAhead(lookAhead) {}

  /// Lets beliefs tell the features of the pairs, for whoever wants to know the reasons.
  void keepFeatures() { m_keepsFeatures = true; }
  /// Adds a tick; times grow. Ticks beyond the look-ahead of the oldest undecided one would be seen
  /// by it: it is to be decided before.
  void add(double time, const std::vector<PersonAt>& people);
  /// Decides the oldest undecided tick with what was added so far.
  TickBeliefs decide();
  /// The latest moments of two persons at the tick that was decided last; see `LatestOf`.
  std::optional<LatestMoments> latestOf(PersonId a, PersonId b);

 private:
  /// Somebody who is or was in view.
  struct Person {
    PersonTrack track;
    double decided = 0.0;   ///< the latest decided tick at which it was in view, seconds
    std::size_t index = 0;  ///< among the people of that tick
    std::optional<MeanStay> stay = {};  ///< in the window of that tick
  };
  struct Tick {
    double time = 0.0;
    std::vector<PersonAt> people;
    std::vector<Person*> persons;  ///< the same
    PlaceOrder order;
  };
  /// The persons of a pair, the lower id first.
  using PairKey = std::pair<PersonId, PersonId>;
  struct WatchedPair {
    PairKey key;
    Person* b = nullptr;    ///< the one with the higher id; is remembered longer than the pair
    double lastNear = 0.0;  ///< when they were last less than `farApart` from each other, seconds
    TogetherChain chain = {};
    /// Null when it is no longer watched. Lags behind as long as it is sure not to matter.
    std::unique_ptr<PairHistory> history = {};
  };
  using WatchedPairs = std::vector<WatchedPair>;

  /// Somebody who is or was near another one and has a higher id.
  struct Other {
    std::size_t index = 0;         ///< among the people of the tick
    WatchedPair* known = nullptr;  ///< null for a pair that was not watched yet
  };
  using Others = std::vector<Other>;

  std::vector<Person*> personsAt(double time, const std::vector<PersonAt>& people);
  void addKnownOthers(PersonId a, WatchedPairs::iterator& known, Others& others) const;
  static void addNearOthers(std::size_t a, const Tick& tick, Others& others);
  static bool isWatched(double time, double distance, WatchedPair& pair);
  PairBelief judge(const Tick& tick, std::size_t a, std::size_t b, double distance,
                   WatchedPair& pair);
  void watchNewPairs(WatchedPairs newPairs);
  void markArrivals(const PersonTrack& a, const PersonTrack& b, PairFeatures& features) const;
  void forget(double time);
  const PersonTrack& trackOfA(const WatchedPair& pair) const;

  EvidenceModel m_model;
  double m_lookAhead;  ///< seconds
  bool m_hasStarted = false;
  double m_start = 0.0;  ///< of the recording, seconds
  double m_last = 0.0;   ///< the latest tick, seconds
  bool m_keepsFeatures = false;
  TogetherChain::Passage m_passage;
  double m_decided = 0.0;  ///< the tick that was decided last, seconds
  std::deque<Tick> m_undecided;
  std::map<PersonId, Person> m_persons;
  WatchedPairs m_pairs;         ///< in ascending order of keys
  double m_nextCleaning = 0.0;  ///< seconds
};

}  // namespace grouptracker

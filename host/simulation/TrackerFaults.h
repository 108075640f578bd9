#pragma once

#include "host/base/RandomNumbers.h"
#include "host/simulation/SimulationOptions.h"
#include "host/simulation/Walker.h"

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace grouptracker {

/// What a tracker of persons does wrong: its places wander around the true ones, it loses people
/// for a while and takes some of them up again under a new id, and of two who are near each other
/// it exchanges the ids, for good. All by rates per second, so that it does not depend on how often
/// one looks.
class TrackerFaults {
 public:
  using Id = std::uint32_t;
  /// New ids start here, above those of all people.
  static constexpr Id firstNewId = 1'000'001;

  /// Two ids that were exchanged, or the old and the new one of somebody who was lost.
  struct Change {
    bool isSwitch = false;
    Id first = 0;
    Id second = 0;
  };

  TrackerFaults(const SimulationOptions& options, std::uint64_t seed)
      : m_options(options), m_random(seed) {}

  /// Lets time go on for those in view; returns what happened to ids.
  std::vector<Change> advance(double seconds, const std::vector<Walker>& inView);

  /// The id under which the tracker has a person.
  Id idOf(Id person) const;
  bool isLost(Id person) const;
  /// From the true place to where the tracker sees the person, metres.
  cv::Point2d errorOf(Id person) const;

 private:
  struct Track {
    Id id = 0;
    double lostFor = 0.0;  ///< seconds; not above 0 while the tracker has the person
    bool comesBackNew = false;
    cv::Point2d error;
  };

  void wander(Track& track, double seconds);
  void lose(Track& track, double seconds, std::vector<Change>& changes);
  void exchange(const std::vector<Walker>& inView, std::vector<Change>& changes);

  const SimulationOptions m_options;
  RandomNumbers m_random;
  std::map<Id, Track> m_tracks;  ///< by person
  Id m_newIds = 0;
  int m_dueSwitches = 0;  ///< as soon as two are near enough
};

}  // namespace grouptracker

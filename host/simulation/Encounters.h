#pragma once

#include "host/base/RandomNumbers.h"
#include "host/simulation/Crowd.h"
#include "host/simulation/SimulatedView.h"
#include "host/simulation/SimulationOptions.h"

#include <cstdint>
#include <deque>
#include <map>
#include <utility>
#include <vector>

namespace grouptracker {

/// What happened to a simulated group.
struct GroupEvent {
  enum class Kind { created, joined, left, merged, split, ended, switched, renamed };
  static constexpr int none = 0;  ///< no group

  Kind kind = Kind::created;
  int group = none;
  int other = none;  ///< the group that merged into `group`, or from which it split
  /// Who came, went, or made the group; of a tracker's fault, the two ids.
  std::vector<std::uint32_t> persons;
};

/// Lets people join and leave groups and groups merge and split, at times drawn beforehand, as soon
/// as people in view are fit for it. A change begins when somebody heads for another company; the
/// groups change once the distance shows it, and only then, and only in view, is the event told.
class Encounters {
 public:
  Encounters(const SimulationOptions& options, const SimulatedView& view, RandomNumbers& random);

  /// Begins what is due and ends what has come about; returns the events of this moment.
  std::vector<GroupEvent> update(Crowd& crowd);

 private:
  struct Planned {
    GroupEvent::Kind kind;
    double time;
  };
  struct Change {
    GroupEvent::Kind kind = GroupEvent::Kind::joined;
    std::vector<std::uint32_t> movers;
    int oldGroup = GroupEvent::none;  ///< of the movers
    int newGroup = GroupEvent::none;  ///< of the movers
  };

  /// The walkers who change groups, and those of whom they part or to whom they come.
  static std::pair<std::vector<Walker*>, std::vector<Walker*>> sidesOf(const Change& change,
                                                                       Crowd& crowd);
  GroupEvent complete(const Change& change, const std::vector<Walker*>& movers, double time) const;
  /// Whether an onlooker notices the change.
  bool isSeen(const std::vector<Walker*>& movers, const std::vector<Walker*>& others) const;
  bool begin(GroupEvent::Kind kind, Crowd& crowd);
  bool beginApproach(GroupEvent::Kind kind, Crowd& crowd);
  bool beginParting(GroupEvent::Kind kind, Crowd& crowd);
  /// Lets some of a company go their own way, or stand by themselves.
  void sendOff(const std::vector<Walker*>& movers, Crowd& crowd);
  /// Where somebody goes who turns away from the others without turning back.
  cv::Point2d drawTurn(const Walker& walker);
  void noteWhoIsSeen(const Crowd& crowd);
  bool isChanging(int group) const;
  bool staysInView(const std::vector<Walker*>& walkers) const;
  bool isFit(const std::vector<Walker*>& company, double time) const;
  std::vector<std::vector<Walker*>> fitCompanies(Crowd& crowd) const;

  const SimulatedView& m_view;
  RandomNumbers& m_random;
  double m_rest;          ///< seconds for which those who changed groups stay together
  double m_acquaintance;  ///< seconds for which people must have been seen before a change
  std::map<std::uint32_t, double> m_seenSince;  ///< seconds; of everybody in view
  std::deque<Planned> m_planned;                ///< in the order of time
  std::vector<Change> m_changes;                ///< begun, not yet to be seen
};

}  // namespace grouptracker

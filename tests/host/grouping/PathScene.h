#pragma once

#include "host/grouping/GroupFinder.h"

#include <map>
#include <string>
#include <vector>

namespace grouptracker {

/// A place that somebody passes at a moment.
struct Stop {
  double time = 0.0;  ///< seconds
  double x = 0.0;     ///< metres
  double y = 0.0;
};

/// People on straight ways between stops, each in view from its first stop to its last.
class PathScene {
 public:
  PathScene& person(PersonId id, const std::vector<Stop>& path);
  /// Takes a person out of view for a while.
  PathScene& hide(PersonId id, double from, double until);
  /// The frames at a rate, numbered from 1, until the last one has left.
  std::vector<PeopleFrame> at(double framesPerSecond) const;

 private:
  struct Walker {
    std::vector<Stop> path;
    double hiddenFrom = 0.0;
    double hiddenUntil = 0.0;  ///< not hidden while it equals `hiddenFrom`
  };

  std::map<PersonId, Walker> m_walkers;
};

/// The groups of all frames.
std::vector<FrameGroups> groupsOf(const std::vector<PeopleFrame>& frames, double lookAhead = 3.2,
                                  const EvidenceModel& model = EvidenceModel::builtIn());

/// What happens to groups, one text for each line with another set of groups than the line before:
/// "1.2 s: 1={1,2} 3={4,5}<1".
std::vector<std::string> changesIn(const std::vector<FrameGroups>& lines);

/// What is wrong with the lines as a groups file of these frames; empty when nothing is.
std::string faultIn(const std::vector<FrameGroups>& lines, const std::vector<PeopleFrame>& frames);

}  // namespace grouptracker

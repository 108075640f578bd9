#pragma once

#include "tracker/tracking/DistanceLines.h"
#include "tracker/tracking/TrajectoryFeatures.h"

#include <QSharedPointer>

#include <deque>
#include <list>

class Group;
class GroupExtension;
class GroupTracker;

/// A mode: a way in which the mobiles of the processed frame become groups. In between its two
/// steps those join a group whom their history points to one; what follows, from merges and splits
/// to the end of the frame, is the same for every mode. See `GroupTracker::groupFrame`.
class Grouping {
 public:
  Grouping() = default;
  Grouping(const Grouping&) = default;
  Grouping& operator=(const Grouping&) = delete;
  virtual ~Grouping() = default;

  /// The step before anybody joins a group that is already there.
  virtual void beforeJoining(GroupTracker& tracker) = 0;
  /// The step for those who are free still.
  virtual void afterJoining(GroupTracker& tracker) = 0;
};

/// Groups of pairs: two free mobiles that are near each other and coherent found a group.
class PairGrouping : public Grouping {
 public:
  /// Prints who is there and how far they are apart.
  void beforeJoining(GroupTracker& tracker) override;
  /// Lets mobiles that stand for several found or join groups, and pairs those who are free.
  void afterJoining(GroupTracker& tracker) override;

 private:
  struct Member;

  static void pairWithFree(GroupTracker& tracker, const Member& first,
                           const std::deque<Member*>& free);

  DistanceLines m_lines;
};

/// Groups by clusters of the persons' recent trajectories: a cluster continues the group that most
/// of its members come from, or founds a new one.
class ClusterGrouping : public Grouping {
 public:
  /// `scene` are the bounds that positions are normalised with; the centres of the clusters are
  /// handed to `extension`, which may be null.
  ClusterGrouping(const SceneScale& scene, const QSharedPointer<GroupExtension>& extension);

  /// Clusters the persons. Throws `math::matrix_error` when one of them is too small to be counted.
  void beforeJoining(GroupTracker& tracker) override;
  /// Places the mobiles that stand for several.
  void afterJoining(GroupTracker& tracker) override;

 private:
  struct Clusters;

  static int countPersons(GroupTracker& tracker);
  Clusters clusterTrajectories(GroupTracker& tracker, int persons) const;
  void showCenters(const Clusters& clusters) const;
  static void assignMobiles(GroupTracker& tracker, Clusters& clusters);
  static int electGroup(const GroupTracker& tracker, const std::list<int>& mobileIds);
  static void associateWithGroups(const GroupTracker& tracker, Clusters& clusters);
  static void printClusters(const Clusters& clusters);
  static void createGroups(GroupTracker& tracker, Clusters& clusters);
  static QSharedPointer<Group> createGroup(GroupTracker& tracker, const std::list<int>& mobileIds);

  SceneScale m_scene;
  QSharedPointer<GroupExtension> m_extension;
};

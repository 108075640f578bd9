#pragma once

#include "tracker/tracking/Grouping.h"
#include "tracker/tracking/TrajectoryFeatures.h"

#include <QSharedPointer>

#include <list>

class Group;
class GroupExtension;

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

#include "tracker/clustering/MeanShift.h"
#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupExtension.h"
#include "tracker/geometry/Converter.h"
#include "tracker/geometry/ObjectType.h"
#include "tracker/geometry/Util.h"
#include "tracker/tracking/GroupTracker.h"
#include "tracker/tracking/Grouping.h"

#include <algorithm>
#include <cmath>
#include <list>
#include <map>
#include <vector>

/// The clusters of one frame: where they are, who is in them and which group each one continues.
struct ClusterGrouping::Clusters {
  struct Center {
    double x;  ///< metres
    double y;  ///< metres
    cv::Point3f point() const { return {static_cast<float>(x), static_cast<float>(y), 0.0F}; }
  };

  int count() const { return static_cast<int>(centers.size()); }

  std::vector<Center> centers;
  std::map<int, std::list<int>> members;        ///< mobile ids in the order of their assignment
  std::map<int, QSharedPointer<Group>> groups;  ///< null for a cluster without a group
};

namespace {

constexpr float smallWidth = 0.44F;  // metres; a box below both of these is not counted as a person
constexpr float smallDepth = 0.2F;   // metres
constexpr double farthestCenter = 2147483647.0;  // metres

bool isPersonMobile(const MetaLPO& mobile) {
  return !mobile.getType().isNotPerson();
}

bool isSmall(const BoundingBox3D& box) {
  return std::abs(box.b0 - box.b3) < smallWidth && std::abs(box.b1 - box.b4) < smallDepth;
}

// Pixels of a point behind the camera may be anywhere, also where no int reaches.
int toPixel(double coordinate) {
  constexpr double reach = 2147483520.0;
  return std::isnan(coordinate) ? 0 : static_cast<int>(std::clamp(coordinate, -reach, reach));
}

void printSizes(int persons) {
  const int window = static_cast<int>(Util::temporalWinSize);
  Diagnostics::print("nMobiles = {}\n", persons);
  Diagnostics::print("nFeatures = {}\n", TrajectoryFeatures::positionRows(window));
  Diagnostics::print("nFeaturesSpeed = {}\n", TrajectoryFeatures::displacementRows(window));
  Diagnostics::print("data size = {}\n", TrajectoryFeatures::rows(window));
}

}  // namespace

ClusterGrouping::ClusterGrouping(const SceneScale& scene,
                                 const QSharedPointer<GroupExtension>& extension)
    : m_scene(scene), m_extension(extension) {}

void ClusterGrouping::beforeJoining(GroupTracker& tracker) {
  Clusters clusters = clusterTrajectories(tracker, countPersons(tracker));
  showCenters(clusters);
  assignMobiles(tracker, clusters);
  associateWithGroups(tracker, clusters);
  printClusters(clusters);
  createGroups(tracker, clusters);
}

// Small persons are not counted here, though all are clustered: the matrix then lacks a column and
// says so with an exception, because a person that small is a fault of the calibration.
int ClusterGrouping::countPersons(GroupTracker& tracker) {
  int persons = 0;
  Diagnostics::print("mobiles at processed frame {}:\n", tracker.processedFrame());
  for (const auto& mobile : tracker.processedMobiles()) {
    Diagnostics::print("{} ({}), ", mobile->getIdent(), mobile->getType().nameOf());
    if (isPersonMobile(*mobile) && !isSmall(mobile->observation().getBoundingBox3D())) {
      ++persons;
    }
  }
  Diagnostics::print("\n");
  printSizes(persons);
  return persons;
}

ClusterGrouping::Clusters ClusterGrouping::clusterTrajectories(GroupTracker& tracker,
                                                               int persons) const {
  const int window = static_cast<int>(Util::temporalWinSize);
  TrajectoryFeatures features(window, persons, m_scene);
  std::size_t columns = 0;
  for (const auto& mobile : tracker.processedMobiles()) {
    if (isPersonMobile(*mobile)) {
      features.fillPositions(columns++, *mobile);
    }
  }
  for (std::size_t column = 0; column < columns; ++column) {
    features.fillDisplacements(column);
  }

  math::matrix<double> centers(features.data().rows(), features.data().cols());
  centers.Null();
  std::vector<int> sizes(columns);
  int count = 0;
  MeanShift().meanShift(features.data(), GroupTracker::tolerance, &count, sizes.data(), &centers,
                        nullptr);
  Diagnostics::print("meanShift done, counter = {}\n", count);

  Clusters clusters;
  for (std::size_t k = 0; k < static_cast<std::size_t>(count); ++k) {
    clusters.centers.push_back({m_scene.toSceneX(centers(0, k)), m_scene.toSceneY(centers(1, k))});
  }
  return clusters;
}

void ClusterGrouping::showCenters(const Clusters& clusters) const {
  std::vector<int> pixels;
  int k = 0;
  for (const auto& [x, y] : clusters.centers) {
    Diagnostics::print(" [{:.16f}; {:.16f}]      // Center {}\n\n", x, y, k++);
    if (Converter::calibration) {
      const cv::Point2d pixel = Converter::calibration->worldToImage({x, y, 0.0});
      pixels.push_back(toPixel(pixel.x));
      pixels.push_back(toPixel(pixel.y));
    }
  }
  if (m_extension) {
    m_extension->setClusterCount(clusters.count());
    m_extension->setCenters(pixels);
  }
}

void ClusterGrouping::assignMobiles(GroupTracker& tracker, Clusters& clusters) {
  for (const auto& mobile : tracker.processedMobiles()) {
    if (!isPersonMobile(*mobile)) {
      continue;
    }
    int best = -1;
    double nearest = farthestCenter;
    for (int k = 0; k < clusters.count(); ++k) {
      const double distance =
          Util::distance3D(clusters.centers[k].point(), mobile->observation().getPosition());
      if (distance < nearest) {
        nearest = distance;
        best = k;
      }
    }
    clusters.members[best].push_back(mobile->getIdent());
  }
}

// The group that most of the mobiles probably belong to; of several the one with the smallest id.
int ClusterGrouping::electGroup(const GroupTracker& tracker, const std::list<int>& mobileIds) {
  std::map<int, int> votes;
  for (const int id : mobileIds) {
    const auto mobile = tracker.node(id);
    const int home = mobile ? tracker.likelyHome(mobile) : noId;
    if (home != noId) {
      ++votes[home];
    }
  }
  int winner = noId;
  int most = 0;
  for (const auto& [home, count] : votes) {
    if (count > most) {
      most = count;
      winner = home;
    }
  }
  return winner;
}

void ClusterGrouping::associateWithGroups(const GroupTracker& tracker, Clusters& clusters) {
  for (int k = 0; k < clusters.count(); ++k) {
    const int winner = electGroup(tracker, clusters.members[k]);
    const auto home = tracker.getGroups().value(winner);
    if (!home) {
      continue;
    }
    // Asked at the current frame, so that the group's latest known place counts.
    cv::Point3f gravity = home->centerOfGravity(tracker.currentFrame());
    gravity.z = 0.0F;
    if (Util::distance3DPoints(clusters.centers[k].point(), gravity) <=
        GroupTracker::maxDistGroupMerge) {
      clusters.groups[k] = home;
    } else {
      Diagnostics::print("too far, {} can not be associated to {}\n", winner, k);
    }
  }
  for (int k = 0; k < clusters.count(); ++k) {
    if (clusters.groups.try_emplace(k).second) {
      Diagnostics::print("center {} assigned to new NULL group\n", k);
    }
  }
}

void ClusterGrouping::printClusters(const Clusters& clusters) {
  Diagnostics::print("finally:\n");
  for (int k = 0; k < clusters.count(); ++k) {
    const auto& home = clusters.groups.at(k);
    Diagnostics::print("cluster {} --> group {} and mobiles ", k, home ? home->getId() : noId);
    for (const int id : clusters.members.at(k)) {
      Diagnostics::print("{} ", id);
    }
    Diagnostics::print("\n");
  }
}

void ClusterGrouping::createGroups(GroupTracker& tracker, Clusters& clusters) {
  for (const auto& [k, ids] : clusters.members) {
    if (clusters.groups[k]) {
      continue;  // its mobiles join through updateGroups
    }
    if (ids.empty()) {
      Diagnostics::print("not creating group for cluster {}\n", k);
    } else if (ids.size() > 1) {
      clusters.groups[k] = createGroup(tracker, ids);
    }
  }
}

QSharedPointer<Group> ClusterGrouping::createGroup(GroupTracker& tracker,
                                                   const std::list<int>& mobileIds) {
  const auto created = QSharedPointer<Group>::create();
  Diagnostics::print("group {} being created with mobiles ", created->getId());
  for (const int id : mobileIds) {
    Diagnostics::print("{} ", id);
    if (const auto mobile = tracker.node(id)) {
      created->addMobile(mobile);
      mobile->setGroupId(created->getId());
    }
  }
  Diagnostics::print("\n");
  created->setStartFrame(tracker.processedFrame());
  created->setEndFrame(noFrame);
  tracker.addGroup(created);
  return created;
}

void ClusterGrouping::afterJoining(GroupTracker& tracker) {
  for (const auto& mobile : tracker.processedMobiles()) {
    if (isGroupOrCrowd(mobile->getType()) && tracker.homeOf(*mobile) == noId) {
      tracker.processGroupMobile(mobile);
    }
  }
}

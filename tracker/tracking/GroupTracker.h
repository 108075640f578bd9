#pragma once

#include "tracker/tracking/Group.h"
#include "tracker/tracking/Grouping.h"
#include "tracker/tracking/MetaLPO.h"
#include "tracker/tracking/MobileDump.h"
#include "tracker/tracking/MotionChanges.h"
#include "tracker/tracking/RememberedNodes.h"
#include "tracker/tracking/TrajectoryFeatures.h"

#include <kel/kelDataActor.h>
#include <kel/kelDataImage.h>
#include <kel/kelDataLinkedPhysicalObject.h>

#include <QList>
#include <QMap>
#include <QSharedPointer>
#include <opencv2/core/types.hpp>

#include <deque>
#include <list>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

class GroupExtension;

/// Follows groups over time. Each frame `initFrame` takes in the actors of the upstream tracker and
/// `trackGroups` or `clusterGroups` decides, for the frame "temporalWinSize:" frames back, who
/// belongs together; by then the mobiles of that frame have their future behind them.
///
/// The tracker owns the groups and the remembered history nodes. Frames are numbered by the caller
/// from 1 on. A mobile id has at most one remembered node, the latest. Nothing here reports an
/// error.
class GroupTracker {
 public:
  static constexpr unsigned int none = unsignedId(noId);  ///< no group, no mobile

  using MobileList = std::list<QSharedPointer<MetaLPO>>;

  static double reliabilityThreshold;
  static unsigned int maxFrames;  ///< frames a node is remembered
  static double maxDistGroupCreation;
  static double maxDistGroupMerge;
  static double maxDistGroupUpdate;
  static double tolerance;
  static double sonDistanceWeight;     ///< percent a son loses per frame of distance
  static double fatherDistanceWeight;  ///< percent a father loses per frame of distance
  static double minReliabilityBest;
  static double minReliabilityOthers;

  GroupTracker() = default;
  GroupTracker(const GroupTracker&) = default;
  GroupTracker& operator=(const GroupTracker&) = delete;
  virtual ~GroupTracker();

  /// The file to which the remembered mobiles are dumped at every intake; empty for no dump.
  void setMobileDump(const std::string& fileName, int descriptor = -1) {
    m_dump.setFile(fileName, descriptor);
  }
  const MobileDump& mobileDump() const { return m_dump; }

  // The scene's bounds on the ground, metres

  void setSceneMinX(float x) { m_scene.minX = x; }
  void setSceneMaxX(float x) { m_scene.maxX = x; }
  void setSceneMinY(float y) { m_scene.minY = y; }
  void setSceneMaxY(float y) { m_scene.maxY = y; }

  // The frame, in the order of the calls

  void initFrame(const QList<QSharedPointer<kelDataActor>>& actors,
                 const QSharedPointer<kelDataImage>& image, unsigned int frame);
  /// Groups by pairs; always 0.
  int trackGroups();
  /// Groups by clusters of trajectories; `extension` may be null.
  void clusterGroups(const QSharedPointer<GroupExtension>& extension);
  /// The frame in any mode.
  void groupFrame(Grouping& mode);

  // What the frame led to

  const QMap<int, QSharedPointer<Group>>& getGroups() const { return m_groups; }
  /// The mobiles taken in at a frame, in intake order; an entry is made where there is none.
  const MobileList& mobilesAt(unsigned int frame) { return m_mobilesByFrame[frame]; }
  /// The remembered node of a mobile; null for an unknown id.
  QSharedPointer<MetaLPO> node(int id) const { return m_mobiles.find(id); }
  /// The same without a share in it.
  const MetaLPO* latestNode(int id) const { return m_mobiles.node(id); }
  /// The group that the mobile most probably belongs to, by its best father or its strongest link.
  unsigned int probableGroupRaw(const QSharedPointer<MetaLPO>& mobile) const;
  /// The same, but only through ancestors that are reliable enough.
  unsigned int probableGroup(const QSharedPointer<MetaLPO>& mobile) const;

  // What modes ask. Ids have a sign here, and none is `noId`.

  int currentFrame() const { return static_cast<int>(m_currentFrame); }
  /// The frame that decisions are about.
  int processedFrame() const;
  const MobileList& processedMobiles() {
    return mobilesAt(static_cast<unsigned int>(processedFrame()));
  }
  /// The group under a mobile id.
  int homeOf(int id) const;
  /// The group under the mobile id of a node: that of the node itself unless its id was declared
  /// again.
  int homeOf(const MetaLPO& mobile) const;
  /// `probableGroup`.
  int likelyHome(const QSharedPointer<MetaLPO>& mobile) const;
  /// Whether two positions are too far apart for a pair.
  static bool isTooFarForPair(const cv::Point3f& a, const cv::Point3f& b);

  // Steps of a frame

  void setTrackedMobiles(const QList<QSharedPointer<kelDataActor>>& actors);
  QSharedPointer<Group> tryPair(const QSharedPointer<MetaLPO>& a, const QSharedPointer<MetaLPO>& b);
  bool processGroupMobile(const QSharedPointer<MetaLPO>& mobile);
  void updateGroups();
  void detectMerge();
  void detectSplit();
  void closeFrame();
  void printGroups() const;
  void printMetaMobiles();

  // Look-ups and changes

  unsigned int groupId(const QSharedPointer<kelDataLinkedPhysicalObject>& object) const;
  unsigned int groupId(int id) const;
  void addGroup(const QSharedPointer<Group>& group);
  unsigned int createGroup(const QSharedPointer<MetaLPO>& mobile);
  void addMobileToGroup(int groupId, unsigned int mobileId);
  void addMobileToGroup(int groupId, const QSharedPointer<MetaLPO>& mobile);
  void removeGroup(unsigned int id);
  std::pair<QSharedPointer<kelDataLinkedPhysicalObject>, bool> getMobile(unsigned int id) const;

  // Ancestry

  unsigned int ancestorGroup(unsigned int id, int depth) const;
  unsigned int ancestorGroup(const QSharedPointer<kelDataLinkedPhysicalObject>& object,
                             int depth) const;
  unsigned int ancestorsInSameGroup(std::pair<unsigned int, unsigned int> ids, int depth) const;
  void ancestors(const QSharedPointer<kelDataLinkedPhysicalObject>& object) const;
  QSharedPointer<kelDataLinkedPhysicalObject> getStrongestFather(
      const QSharedPointer<kelDataLinkedPhysicalObject>& object, bool onlyReliable) const;
  std::pair<unsigned int, cv::Rect> getStrongestFather2D(
      const QSharedPointer<kelDataLinkedPhysicalObject>& object, bool onlyReliable) const;
  std::pair<unsigned int, BoundingBox3D> getStrongestFather3D(
      const QSharedPointer<kelDataLinkedPhysicalObject>& object, bool onlyReliable) const;

 private:
  struct Seeker;
  struct Candidate;
  class ChainWalk;

  // Intake
  QSharedPointer<MetaLPO> takeIn(const kelDataActor& actor);
  QSharedPointer<MetaLPO> makeNode(const QSharedPointer<kelDataLinkedPhysicalObject>& object);
  void linkToFathers(const QSharedPointer<MetaLPO>& mobile) const;
  void readChain(const kelDataActor& actor, MetaLPO& mobile) const;
  void electBestFather(const QSharedPointer<MetaLPO>& mobile) const;
  void preferPredecessor(const kelDataActor& actor, const QSharedPointer<MetaLPO>& mobile) const;
  int firstKeptFrame() const;
  void forgetOldMobiles();
  void forgetOldFrames();
  void refreshBestSons();

  // Groups out of an ancestry
  int likelyHomeRaw(const QSharedPointer<MetaLPO>& mobile) const;
  int ancestralHome(int id, int depth) const;
  bool joinAncestorGroup(const QSharedPointer<MetaLPO>& mobile);
  bool foundFromAncestry(const QSharedPointer<MetaLPO>& mobile);
  void addAncestor(Group& trial, const QSharedPointer<MetaLPO>& ancestor,
                   std::list<double>& coherences);

  // Maintenance. Whoever is asked in a frame is kept in deques: a single large piece of memory
  // would make the allocator tidy up after all small ones, every frame anew.
  bool updateGroupsOnce(std::deque<Seeker>& seekers);
  static void forgetRefusals(std::deque<Seeker>& seekers, int groupId);
  void ask(Seeker& seeker, std::map<int, Candidate>& candidates) const;
  void mergeGroups(const std::set<int>& ids);
  void moveToGroup(const std::set<int>& from, int to);
  std::map<int, QSharedPointer<MetaLPO>> rememberedAt(unsigned int frame) const;

  SceneScale m_scene{0.0F, 1.0F, 0.0F, 1.0F};
  QMap<int, QSharedPointer<Group>> m_groups;
  std::list<QSharedPointer<kelDataLinkedPhysicalObject>> m_lpoList;  ///< searched by `getMobile`
  unsigned int m_currentFrame = 0;
  bool m_intakeWasCutShort = false;  ///< by an actor without mobiles
  RememberedNodes m_mobiles;
  std::map<unsigned int, MobileList> m_mobilesByFrame;
  QSharedPointer<kelDataImage> m_currentImage;  ///< of the current frame; may be null
  std::size_t m_intakes = 0;                    ///< nodes made so far
  QSharedPointer<MotionChanges> m_motions = QSharedPointer<MotionChanges>::create();
  PairGrouping m_pairs;
  MobileDump m_dump;
};

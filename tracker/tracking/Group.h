#pragma once

#include "tracker/display/ROI.h"
#include "tracker/geometry/Numbering.h"
#include "tracker/tracking/GroupMembers.h"
#include "tracker/tracking/MetaLPO.h"

#include <kel/BoundingBox3D.h>
#include <kel/kelDataImage.h>
#include <kel/kelDataLinkedPhysicalObject.h>

#include <QColor>
#include <QSharedPointer>
#include <opencv2/core/types.hpp>

#include <list>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

/// One tracked group of mobiles: its identity, its members over time, its geometry at a frame and
/// its cohesion. Members are shared with the tracker; every mobile id has at most one node, the
/// latest. The coherence is a cost in metres-like units: lower is tighter.
///
/// Boxes in the image are in pixels, everything in the scene in metres. Nothing here fails: a frame
/// without members has empty boxes and zero positions.
class Group {
 public:
  using Members = GroupMembers::ById;
  using Event = std::pair<int, int>;  ///< the other group's id and the frame

  static double coherenceThreshold;
  static unsigned int distWeight;
  static unsigned int speedSimWeight;
  static unsigned int dirSimWeight;
  static double distanceThreshold;
  static double speedSimThreshold;
  static double dirSimThreshold;
  static int currentId;  ///< the next id to give

  /// Draws the next id.
  static int getNewId();
  /// Hands the last drawn id back, so that it is given again.
  static void forgetLastId();

  /// Each of these draws an id and a colour.
  Group();
  explicit Group(unsigned int frame);
  explicit Group(const QSharedPointer<MetaLPO>& mobile);
  Group(const QSharedPointer<kelDataLinkedPhysicalObject>& object, unsigned int frame);
  /// A trial copy: same identity, members shared, no events and no image patches.
  Group(const Group& other);
  Group& operator=(const Group&) = delete;
  virtual ~Group();

  void init();

  // Identity and life

  int getId() const { return m_id; }
  const QColor& getColor() const { return m_color; }
  const std::string& getComment() const { return m_comment; }
  void setComment(const std::string& comment) { m_comment = comment; }
  int getStartFrame() const { return m_startFrame; }
  void setStartFrame(int frame) { m_startFrame = frame; }
  int getEndFrame() const { return m_endFrame; }
  void setEndFrame(int frame) { m_endFrame = frame; }
  /// Whether a mobile was added since the last frame was closed.
  bool isUpdated() const { return m_isUpdated; }

  // Members

  void addMobile(const QSharedPointer<MetaLPO>& mobile);
  void addMobile(const QSharedPointer<kelDataLinkedPhysicalObject>& object, int frame);
  void removeMobile(int id);
  bool contains(const QSharedPointer<kelDataLinkedPhysicalObject>& object) const;
  const Members& getMobiles() const { return m_members.byId(); }
  /// The frames with members, ascending.
  const std::vector<FrameMembers>& frames() const { return m_members.frames(); }
  /// The members at a frame, in the order of their ids.
  std::span<MetaLPO* const> membersAt(int frame) const;
  /// The platform objects of all members, in the order of their ids.
  std::vector<QSharedPointer<kelDataLinkedPhysicalObject>> getLPOs() const;
  /// The weighted head count at a frame: a group or crowd counts 2, anything else 1.
  int numMobilesAtFrame(unsigned int frame) const;
  int countDistinctFrames() const;
  int getBestMobileId() const { return m_bestMobileId; }
  /// The weighted head count over the group's life.
  int getNumMobiles() const { return m_numMobiles; }
  int getFramesAlone() const { return m_framesAlone; }
  int getMobilesLeft() const { return m_mobilesLeft; }
  void printMobiles() const;

  // Merges and splits

  /// Takes in all members of the other group, which is left as it is.
  void doMerge(const QSharedPointer<Group>& other);
  /// Records a merge with another group; only the first with the same group counts.
  void addMerge(int other, int frame);
  /// Records a split from another group; only the first with the same group counts.
  void addSplit(int other, int frame);
  const std::list<Event>& getMerges() const { return m_merges; }
  const std::list<Event>& getSplits() const { return m_splits; }

  // Geometry at a frame

  cv::Rect_<int> bbox2D(int frame) const;
  BoundingBox3D bbox3D(int frame) const;
  /// The mean of the members' positions.
  cv::Point3_<float> position(int frame) const;
  /// The mean of the members' centres at the latest frame before the one asked for; only when there
  /// is none, at that frame itself.
  cv::Point3_<float> centerOfGravity(int frame) const;
  /// Elects the member nearest to the centre of gravity; -1 asks for the latest frame.
  void computeBestMobile(int frame);
  /// Ends a frame: elects, trims what is too old, counts who left, keeps the image patch.
  /// `nodes` are the remembered mobiles by id, at least those of the frame; `image` may be null.
  void closeFrame(unsigned int frame, const std::map<int, QSharedPointer<MetaLPO>>& nodes,
                  const QSharedPointer<kelDataImage>& image);
  const std::map<int, ROI>& getROIs() const { return m_rois; }
  /// Releases the pixels of all image patches; the entries stay.
  void freeROIs();

  // Coherence

  double groupCoherence() const;
  /// The coherence with one more object at the frame; 1000 for one far from the representative.
  double groupCoherence(const QSharedPointer<kelDataLinkedPhysicalObject>& object,
                        unsigned int frame);
  /// The coherence with a mobile and, by their best sons, its and the representative's future,
  /// weighted towards the mobile's own frame. The group is left as it is.
  double groupCoherence(const QSharedPointer<MetaLPO>& mobile) const;
  /// The same where only a coherence below `limit` is of interest: from `limit` on any value that
  /// is not below it may be returned.
  double groupCoherence(const QSharedPointer<MetaLPO>& mobile, double limit) const;
  /// How much the members differ in speed and in direction, averaged over the frames.
  std::pair<double, double> computeSpeedDirSimilitude() const;
  /// Brings the properties behind the coherence up to date after a change at the frame.
  void updateProperties(unsigned int frame);
  /// The distance from a mobile to the group as it was one frame earlier.
  double distance(const QSharedPointer<MetaLPO>& mobile, int frame) const;
  const Cohesion& getCohesion() const { return m_cohesion; }
  double getAvgIntraDist() const { return m_cohesion.avgIntraDist; }
  double getSpeedSimilitude() const { return m_cohesion.spreads.speed; }
  double getDirSimilitude() const { return m_cohesion.spreads.direction; }

 private:
  cv::Point3f centerAt(unsigned int frame) const;
  int representative(std::span<MetaLPO* const> candidates, const cv::Point3f& center) const;
  void countNewMobile(const MetaLPO& mobile);
  void countLeavers(unsigned int frame, const std::map<int, QSharedPointer<MetaLPO>>& nodes);
  void countAlone();
  void keepPatch(unsigned int frame, const QSharedPointer<kelDataImage>& image);
  std::optional<double> coherenceByTrial(MetaLPO* mobile, double limit) const;
  double coherenceByCopy(const QSharedPointer<MetaLPO>& mobile) const;

  int m_id = 0;
  QColor m_color;
  bool m_isUpdated = true;
  GroupMembers m_members;
  int m_bestMobileId = 0;  ///< the representative; 0 also before there is one
  int m_startFrame = noFrame;
  int m_endFrame = noFrame;  ///< frame after which nobody joined; none while the group is open
  std::string m_comment;
  int m_numMobiles = 0;
  int m_framesAlone = 0;  ///< closed frames in a row with a head count of exactly 1
  int m_mobilesLeft = 0;  ///< weight of those who left and may come back
  Cohesion m_cohesion;
  std::list<Event> m_merges;
  std::list<Event> m_splits;
  std::map<int, ROI> m_rois;
  QSharedPointer<kelDataImage> m_mask;  ///< never set: patches are cut without a mask
};

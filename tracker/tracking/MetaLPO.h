#pragma once

#include "tracker/geometry/Numbering.h"
#include "tracker/geometry/ObjectType.h"
#include "tracker/tracking/MetaLPOLink.h"
#include "tracker/tracking/MotionChanges.h"

#include <kel/kelDataLinkedPhysicalObject.h>

#include <QSharedPointer>
#include <QVarLengthArray>
#include <opencv2/core/types.hpp>

#include <cstddef>
#include <limits>
#include <vector>

/// The history node of one mobile at one frame: the group it was put in, its links to the nodes it
/// may descend from (its fathers), and the one best father it elected among them. The chain of best
/// fathers is the mobile's history.
///
/// The tracker and the groups own nodes; nodes refer to each other weakly. Speeds are in metres per
/// step between a node and its best father, directions in metres.
class MetaLPO {
 public:
  static double recentLinkWeight;  ///< share of the most recent link in `fatherScore`

  /// One earlier mobile of the upstream tracker's own chain and how sure its chain is up to there.
  struct ChainEntry {
    int ident;
    int frame;  ///< in which it was seen; `afterGap` when that of a gap before it is unknown
    double reliability;  ///< up to there
    double step;         ///< reliability of the one step from the entry before
  };
  static constexpr int afterGap = std::numeric_limits<int>::min();

  MetaLPO() = default;
  MetaLPO(const QSharedPointer<kelDataLinkedPhysicalObject>& lpo, unsigned int frame);
  /// Copies the scalar results of the history, none of its references.
  MetaLPO(const MetaLPO& other);
  MetaLPO& operator=(const MetaLPO&) = delete;
  virtual ~MetaLPO();

  /// The mobile id.
  int getIdent() const { return m_ident; }
  const QSharedPointer<kelDataLinkedPhysicalObject>& getPhysicalObject() const { return m_lpo; }
  /// What was seen of the mobile.
  const kelDataPhysicalObject& observation() const { return *m_lpo->getPhysicalObject(); }
  const ObjectType& getType() const { return m_type; }
  /// The centre of the mobile's box, metres.
  const cv::Point3f& getCenter() const { return m_center; }
  /// The centre of the box's foot, on the ground, metres.
  const cv::Point3f& getBaseCenter() const { return m_baseCenter; }
  unsigned int getFrame() const { return m_frame; }

  int getGroupId() const { return m_groupId; }
  void setGroupId(int groupId) { m_groupId = groupId; }

  /// Makes the node one of a tracker's: the how-manieth that was taken in, from 0 on, and where
  /// those note it who lose their best father. To be called before there are links.
  void enterTracker(std::size_t intakeNumber, const QSharedPointer<MotionChanges>& motions) {
    m_intakeNumber = intakeNumber;
    m_motions = motions;
  }
  std::size_t getIntakeNumber() const { return m_intakeNumber; }
  /// Shared by all nodes of a tracker; null for a node outside, whose motion may change unseen.
  const MotionChanges* motions() const { return m_motions.data(); }

  /// Whether the tracker finds this node under its mobile id; no longer so when the id was declared
  /// again or the node is too old.
  bool isRemembered() const { return m_isRemembered; }
  void setRemembered(bool remembered) { m_isRemembered = remembered; }
  /// Whether another node of the same mobile id may be among those of the last frames.
  bool hasNamesake() const { return m_hasNamesake; }
  void setHasNamesake() { m_hasNamesake = true; }

  // Links and ancestry

  /// Appends a link from a father to a son, which is this node; null for one that is not known.
  void addFatherLink(const QSharedPointer<MetaLPO>& father, const QSharedPointer<MetaLPO>& son,
                     double reliability) {
    m_fatherLinks.emplace_back(father, son, reliability);
  }
  /// Makes room for links that are about to be added.
  void reserveLinks(std::size_t count) { m_fatherLinks.reserve(count); }
  const std::vector<MetaLPOLink>& getFatherLinks() const { return m_fatherLinks; }
  /// Sorts the links from the least to the most reliable; equal ones keep their order.
  void sortLinks();
  /// Has no lasting effect; kept because the tracker's life cycle of a node names it.
  void resetLinks();
  /// Drops the links whose father was observed before the first kept frame or is gone.
  void eraseOldLinks(int firstKeptFrame);

  /// Elects the best father unless one is elected; returns its id, 0xFFFFFFFF for none.
  unsigned int computeBestFather();
  /// The best father; null when it is gone; a stand-alone copy of this node when none is elected.
  QSharedPointer<MetaLPO> getBestFather() const;
  /// The best father for a walk back in time; null when there is none, it is gone, or it is this
  /// very node, as happens to an id declared again with itself as father.
  QSharedPointer<MetaLPO> ancestor() const;
  /// The same without a share in it.
  const MetaLPO* ancestorNode() const {
    const MetaLPO* const father = m_bestFather.get();
    return father == this ? nullptr : father;
  }
  /// Whether the history starts here: no best father was elected, or it is this very node. Not so
  /// when the best father is gone.
  bool endsHistory() const { return m_bestFatherId == noId || m_bestFather.get() != nullptr; }
  int getBestFatherId() const { return m_bestFatherId; }
  double getBestFatherReliability() const { return m_bestFatherReliability; }
  /// Makes `father` the best father, whatever was elected.
  void overrideBestFather(const QSharedPointer<MetaLPO>& father, double reliability);
  /// The father with the id among the links; null when there is none.
  QSharedPointer<MetaLPO> getFather(unsigned int id) const;
  /// The first link to a father with the id that is still there; null without one.
  const MetaLPOLink* linkTo(int fatherId) const;
  /// How reliable the ancestry of an object is, over the platform's own links, `depth` levels back.
  double fatherScore(const QSharedPointer<kelDataLinkedPhysicalObject>& object,
                     unsigned int depth) const;

  /// The best son; null when unset or gone.
  QSharedPointer<MetaLPO> getBestSon() const { return m_bestSon.share(); }
  /// The same without a share in it.
  const MetaLPO* bestSonNode() const { return m_bestSon.get(); }
  /// The best son for a walk forward in time; null also when it is this very node.
  MetaLPO* descendant() const {
    MetaLPO* const son = m_bestSon.get();
    return son == this ? nullptr : son;
  }
  int getBestSonId() const { return m_bestSonId; }
  double getBestSonScore() const { return m_bestSonScore; }
  void setBestSon(const QSharedPointer<MetaLPO>& son) { m_bestSon = WeakNode(son); }
  void setBestSonId(int id) { m_bestSonId = id; }
  void setBestSonScore(double score) { m_bestSonScore = score; }

  /// The length of the upstream tracker's list at this node.
  void setChainLength(double length) { m_chainLength = length; }
  std::vector<ChainEntry>& chain() { return m_chain; }
  const std::vector<ChainEntry>& chain() const { return m_chain; }

  // Motion

  /// The speed, averaged along the history; computed when not cached.
  double computeSpeed();
  /// The length of the last step alone; stored as the speed.
  double computeSpeedRec();
  /// The displacement from the best father; zero without one.
  cv::Point3f computeDirection() const { return hasStep() ? m_step : cv::Point3f(); }

  double getSpeed() const { return m_speed; }
  int getSpeedSamples() const { return m_speedSamples; }

 private:
  using Links = QVarLengthArray<const MetaLPOLink*, 16>;

  bool hasStep() const { return m_bestFather.get() != nullptr && m_bestFatherId != m_ident; }
  void loseBestFather();
  void noteMotionAt(unsigned int frame) const;
  Links linksByRecentFather() const;

  // What walks along the history ask of a node comes first, so that it lies together.
  int m_ident = noId;
  unsigned int m_frame = 0;
  int m_groupId = noId;
  int m_bestFatherId = noId;
  int m_bestSonId = noId;
  bool m_isRemembered = false;
  bool m_hasNamesake = false;
  WeakNode m_bestFather;
  std::size_t m_intakeNumber = 0;
  WeakNode m_bestSon;
  double m_bestSonScore = 0.0;
  std::vector<MetaLPOLink> m_fatherLinks;
  double m_speed = -1.0;                 ///< metres per step; -1 until first computed
  int m_speedSamples = 0;                ///< steps averaged into the speed
  cv::Point3f m_step;                    ///< displacement from the best father, metres
  double m_bestFatherReliability = 0.0;  ///< kept when the father is lost
  cv::Point3f m_center;
  cv::Point3f m_baseCenter;
  ObjectType m_type;
  QSharedPointer<MotionChanges> m_motions;
  QSharedPointer<kelDataLinkedPhysicalObject> m_lpo;
  double m_chainLength = 0.0;
  std::vector<ChainEntry> m_chain;        ///< from the most recent predecessor back
  std::vector<unsigned int> m_sonFrames;  ///< of the nodes that elected this one
};

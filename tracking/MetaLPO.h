#pragma once

#include <kel/kelDataLinkedPhysicalObject.h>

#include <opencv2/core/types.hpp>

#include <QSharedPointer>
#include <QWeakPointer>

#include <list>
#include <utility>
#include <vector>

#include "MetaLPOLink.h"

/// The history node of one mobile at one frame: the group it was put in, its links to the nodes it
/// may descend from (its fathers), and the one best father it elected among them. The chain of best
/// fathers is the mobile's history.
///
/// The tracker and the groups own nodes; nodes refer to each other weakly. Speeds are in metres per
/// step between a node and its best father, directions in metres.
class MetaLPO {
 public:
  static constexpr int noId = -1;  ///< no group, father or son; 0xFFFFFFFF as an unsigned id

  static double recentLinkWeight;  ///< share of the most recent link in `fatherScore`

  /// One earlier mobile of the upstream tracker's own chain and how sure its chain is up to there.
  struct ChainEntry {
    int ident;
    double reliability;
  };

  MetaLPO() = default;
  MetaLPO(const QSharedPointer<kelDataLinkedPhysicalObject>& lpo, unsigned int frame);
  /// Copies the scalar results of the history, none of its references.
  MetaLPO(const MetaLPO& other);
  MetaLPO& operator=(const MetaLPO&) = delete;
  virtual ~MetaLPO();

  /// The mobile id.
  int getIdent() const { return static_cast<int>(m_lpo->getIdent()); }
  const QSharedPointer<kelDataLinkedPhysicalObject>& getPhysicalObject() const { return m_lpo; }
  /// What was seen of the mobile.
  const kelDataPhysicalObject& observation() const { return *m_lpo->getPhysicalObject(); }
  unsigned int getFrame() const { return m_frame; }

  int getGroupId() const { return m_groupId; }
  void setGroupId(int groupId) { m_groupId = groupId; }

  // Links and ancestry

  /// Appends a link from a father; null for a father that is not known.
  void addFatherLink(const QSharedPointer<MetaLPOLink>& link) { m_fatherLinks.push_back(link); }
  const std::vector<QSharedPointer<MetaLPOLink>>& getFatherLinks() const { return m_fatherLinks; }
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
  int getBestFatherId() const { return m_bestFatherId; }
  double getBestFatherReliability() const { return m_bestFatherReliability; }
  /// Makes `father` the best father, whatever was elected.
  void overrideBestFather(const QSharedPointer<MetaLPO>& father, double reliability);
  /// The father with the id among the links; null when there is none.
  QSharedPointer<MetaLPO> getFather(unsigned int id) const;
  /// The reliability of the first link to the father with the id; 0 without one.
  double linkReliability(int fatherId) const;
  /// How reliable the ancestry of an object is, over the platform's own links, `depth` levels back.
  double fatherScore(const QSharedPointer<kelDataLinkedPhysicalObject>& object,
                     unsigned int depth) const;

  /// The best son; null when unset or gone.
  QSharedPointer<MetaLPO> getBestSon() const { return m_bestSon.toStrongRef(); }
  /// The best son for a walk forward in time; null also when it is this very node.
  QSharedPointer<MetaLPO> descendant() const;
  int getBestSonId() const { return m_bestSonId; }
  double getBestSonScore() const { return m_bestSonScore; }
  void setBestSon(const QSharedPointer<MetaLPO>& son) { m_bestSon = son; }
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
  cv::Point3f computeDirection() const;

  double getSpeed() const { return m_speed; }
  int getSpeedSamples() const { return m_speedSamples; }

 private:
  double stepLength(const MetaLPO& from) const;

  QSharedPointer<kelDataLinkedPhysicalObject> m_lpo;
  int m_groupId = noId;
  unsigned int m_frame = 0;
  double m_speed = -1.0;   ///< -1 until first computed
  int m_speedSamples = 0;  ///< steps averaged into the speed
  int m_bestFatherId = noId;
  int m_bestSonId = noId;
  QWeakPointer<MetaLPO> m_bestFather;
  double m_bestFatherReliability = 0.0;  ///< kept when the father is lost
  double m_bestSonScore = 0.0;
  QWeakPointer<MetaLPO> m_bestSon;
  double m_chainLength = 0.0;
  std::vector<QSharedPointer<MetaLPOLink>> m_fatherLinks;
  std::vector<ChainEntry> m_chain;  ///< from the most recent predecessor back
};

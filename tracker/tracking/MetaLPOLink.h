#pragma once

#include "tracker/tracking/Ids.h"
#include "tracker/tracking/WeakNode.h"

#include <QSharedPointer>

/// A link from a history node of an earlier frame, the father, to a node of a later frame, the son,
/// with the reliability that the upstream tracker gave it. Both ends are held weakly: the tracker
/// owns the nodes. A link lives in its son's node and is part of it, so that a walk over the links
/// of many nodes stays on few cache lines.
class MetaLPOLink {
 public:
  MetaLPOLink() = default;
  MetaLPOLink(const QSharedPointer<MetaLPO>& father, const QSharedPointer<MetaLPO>& son,
              double reliability);

  /// The older node; null when it was never known or is gone.
  QSharedPointer<MetaLPO> getFather() const { return m_father.share(); }
  /// The newer node; null when it is gone.
  QSharedPointer<MetaLPO> getSon() const { return m_son.share(); }
  /// The father without a share in it, for a walk during which nothing is released.
  MetaLPO* fatherNode() const { return m_father.get(); }
  /// Whether the father is still there and has the id.
  bool leadsTo(int fatherId) const { return m_fatherId == fatherId && m_father.get() != nullptr; }
  double getReliability() const { return m_reliability; }

  /// Orders links from the least to the most reliable.
  static bool compare_links(const MetaLPOLink& a, const MetaLPOLink& b) {
    return a.m_reliability < b.m_reliability;
  }

 private:
  WeakNode m_father;
  int m_fatherId = noId;  ///< looked for without touching the father
  WeakNode m_son;
  double m_reliability = 0.0;
};

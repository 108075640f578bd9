#pragma once

#include "tracker/geometry/Numbering.h"

#include <QSharedPointer>
#include <QWeakPointer>

class MetaLPO;

/// A reference to a history node that keeps nobody alive and can be followed without a share.
class WeakNode {
 public:
  WeakNode() = default;
  explicit WeakNode(const QSharedPointer<MetaLPO>& node) : m_weak(node), m_node(node.data()) {}

  /// The node; null when there is none or it is gone. For a look during which nothing is released.
  MetaLPO* get() const { return m_weak.isNull() ? nullptr : m_node; }
  /// The same with a share in it.
  QSharedPointer<MetaLPO> share() const { return m_weak.toStrongRef(); }

 private:
  QWeakPointer<MetaLPO> m_weak;
  MetaLPO* m_node = nullptr;  ///< valid while that is not gone
};

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

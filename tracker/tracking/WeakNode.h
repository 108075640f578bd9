#pragma once

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

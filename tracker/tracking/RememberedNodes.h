#pragma once

#include "tracker/tracking/MetaLPO.h"

#include <QSharedPointer>
#include <QWeakPointer>

#include <deque>
#include <map>
#include <unordered_map>
#include <vector>

/// The nodes that the tracker remembers: of every mobile id the latest one. Walks go in ascending
/// order of the ids, look-ups take constant time, and what has become too old is found without
/// asking every node.
class RememberedNodes {
 public:
  /// A node with its id, so that walks that look for ids need not touch the nodes.
  struct Entry {
    int id;
    MetaLPO* node;
  };

  /// All nodes in ascending order of their ids.
  const std::vector<Entry>& inOrder() const;
  /// The node of a mobile; null for an unknown id.
  QSharedPointer<MetaLPO> find(int id) const;
  /// The same without a share in it.
  MetaLPO* node(int id) const;

  /// Whether some remembered node has, or had, another one of its id beside it.
  bool hasNamesakes() const { return m_namesakes > 0; }

  /// Takes a node in, in place of an older one with its id.
  void add(const QSharedPointer<MetaLPO>& mobile);
  void remove(int id);

  /// Notes the frame from which on the node's oldest link is too old; asked for once the links are
  /// complete.
  void fileLinks(const QSharedPointer<MetaLPO>& mobile);
  /// Drops all links to fathers that were observed before the frame or are gone.
  void eraseOldLinks(int firstKeptFrame);

 private:
  void noteChange(int id);

  std::unordered_map<int, QSharedPointer<MetaLPO>> m_nodes;
  // The order is made up to date when somebody walks: in one pass for all that came and went since.
  mutable std::vector<Entry> m_ordered;
  mutable std::vector<Entry> m_reordered;  ///< room for that pass
  mutable std::vector<int> m_changed;      ///< ids that came, went or changed their node
  int m_namesakes = 0;
  std::map<int, std::deque<QWeakPointer<MetaLPO>>> m_byOldestFather;  ///< by its frame
};

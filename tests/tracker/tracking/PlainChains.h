#pragma once

#include <kel/kelDataActor.h>

#include <QList>
#include <QSharedPointer>

#include <map>
#include <utility>
#include <vector>

/// The chains of the remembered mobiles, worked out the long way from what is handed in alone: no
/// history nodes, only ids, frames and links.
class PlainChains {
 public:
  using Actors = QList<QSharedPointer<kelDataActor>>;
  using Chain = std::vector<std::pair<int, double>>;  ///< ids with the reliability up to there

  /// Takes a frame in and forgets what is too old, as the tracker does.
  void takeIn(const Actors& actors, int frame);

  /// The ids that are remembered, ascending, with their chains.
  std::map<int, Chain> all() const;

 private:
  struct Link {
    int father;
    int fatherFrame;
    double reliability;
  };
  struct Mobile {
    int frame = 0;
    std::vector<Link> links;
    Chain chain;
  };

  void takeIn(const kelDataActor& actor, int frame);
  double stepFrom(int id, int fatherId) const;
  void forgetBefore(int firstKeptFrame);

  std::map<int, Mobile> m_mobiles;
};

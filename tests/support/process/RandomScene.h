#pragma once

#include "tests/support/process/Scene.h"

#include <QList>
#include <QSharedPointer>
#include <opencv2/core/types.hpp>

#include <random>
#include <vector>

/// A scene without end in which people walk alone and in groups, leave and come back, with a few
/// links between neighbours. The same seed gives the same scene everywhere. What the last
/// `memory` frames declared is kept, so that memory does not grow with the frames.
class RandomScene {
 public:
  struct Options {
    unsigned int seed = 1;
    unsigned int people = 10;
    /// Whether the upstream tracker makes mistakes: noise, crowds, tall and wide boxes, frames and
    /// actors without mobiles, links to mobiles long gone.
    bool hasOddities = false;
    /// Whether ids are declared again, sometimes with themselves as father.
    bool reusesIds = false;
    unsigned int memory = 60;  ///< frames
    /// Ids from 2147483648 on are negative where they are compared.
    unsigned int firstIdent = 1;
  };

  explicit RandomScene(const Options& options);

  /// The actors of the next frame.
  const QList<QSharedPointer<kelDataActor>>& next();

 private:
  /// Somebody who walks: the party's course, and the way he was seen.
  struct Walker {
    unsigned int actor;
    cv::Point2f place;  ///< metres
    cv::Point2f step;   ///< metres per frame
    int hiddenFrames = 0;
    std::vector<unsigned int> seen;  ///< his last mobiles, the latest last
  };

  bool chance(double probability);
  float between(double low, double high);
  unsigned int below(std::size_t end);

  void addParty();
  void observe(Walker& walker);
  unsigned int newIdent(const Walker& walker);
  void linkToOwnPast(const Walker& walker, SceneMobile& mobile);
  void linkToNeighbours(const Walker& walker, SceneMobile& mobile);
  void addOddities(SceneMobile& mobile);
  void move(Walker& walker);

  Options m_options;
  std::mt19937 m_random;
  Scene m_scene;
  unsigned int m_frame = 0;
  unsigned int m_nextActor = 1;
  unsigned int m_nextIdent;
  std::vector<Walker> m_walkers;
  std::vector<unsigned int> m_recent;  ///< ids declared within the memory; each may be linked to
  std::vector<unsigned int> m_declaredNow;
};

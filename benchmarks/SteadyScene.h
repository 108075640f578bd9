#pragma once

#include <kel/kelDataActor.h>

#include <QList>
#include <QSharedPointer>
#include <opencv2/core/types.hpp>

#include <cstdint>
#include <deque>
#include <random>
#include <string>
#include <vector>

/// A scene without end, as a tracker would deliver it, at 25 frames a second unless another rate is
/// asked for: people walk alone and in groups through a square that grows with their number and
/// come back on the other side. Each has links to the last five mobiles of its own and a list of
/// the last thirty. The same options give the same scene everywhere.
class SteadyScene {
 public:
  using Actors = QList<QSharedPointer<kelDataActor>>;

  enum class Grouping {
    mixed,  ///< two of five alone, the others in groups of two to four
    small,  ///< all in groups of three
    dense,  ///< one single group
  };

  struct Options {
    int people = 50;
    Grouping grouping = Grouping::mixed;
    int stay = 0;        ///< frames after which a group leaves and others come; 0: nobody leaves
    float rate = 25.0F;  ///< frames a second
  };

  explicit SteadyScene(const Options& options);

  /// The actors of the next frame.
  Actors next();
  /// The same frame as a line of a scene file.
  std::string nextAsLine();

 private:
  struct Person {
    unsigned int actor = 0;
    cv::Point2f place;  ///< metres
    cv::Point2f step;   ///< metres per frame
    std::uint64_t leaves = 0;
    std::deque<QSharedPointer<kelDataLinkedPhysicalObject>> seen;  ///< the latest last
  };

  float between(float low, float high);
  int groupSize();
  void addGroup(std::size_t first, int size);
  void renew();
  void walk(Person& person);
  void observe(Person& person);

  Options m_options;
  std::mt19937 m_random{1};
  float m_side;
  std::uint64_t m_frame = 0;
  unsigned int m_nextIdent = 1;
  unsigned int m_nextActor = 1;
  std::vector<Person> m_people;
};

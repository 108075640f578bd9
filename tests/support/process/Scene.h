#pragma once

#include <kel/kelDataActor.h>
#include <kel/kelDataLinkedPhysicalObject.h>

#include <QList>
#include <QSharedPointer>
#include <opencv2/core/types.hpp>

#include <list>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What a scene says of one mobile at one frame. What is not said has a default: a person of
/// 0.5 x 0.5 x 1.7 m who stands at the origin, without fathers, in the list of an actor that has
/// the mobile's id and no other mobiles.
class SceneMobile {
 public:
  explicit SceneMobile(unsigned int ident) : m_ident(ident) {}

  /// Where the mobile stands, metres.
  SceneMobile& at(float x, float y) {
    m_place = {x, y};
    return *this;
  }
  SceneMobile& type(const std::string& name) {
    m_type = name;
    return *this;
  }
  /// The extent of the 3D box, metres.
  SceneMobile& size(float width, float depth, float height) {
    m_size = {width, depth, height};
    return *this;
  }
  /// The box in the image, pixels.
  SceneMobile& box2D(const cv::Rect& box) {
    m_box2D = box;
    return *this;
  }
  /// Adds a father link to a mobile declared earlier, in this frame or another.
  SceneMobile& from(unsigned int father, double reliability) {
    m_fathers.emplace_back(father, reliability);
    return *this;
  }
  /// Continues an earlier mobile: a father link, and the actor and its list go on.
  SceneMobile& follows(unsigned int predecessor, double reliability = 0.9) {
    m_predecessor = predecessor;
    return from(predecessor, reliability);
  }
  /// The mobiles before this one in its actor's list.
  SceneMobile& chain(const std::vector<unsigned int>& idents) {
    m_chain = idents;
    return *this;
  }
  SceneMobile& actor(unsigned int ident) {
    m_actor = ident;
    return *this;
  }

  /// The platform's record of the mobile, still without links.
  QSharedPointer<kelDataLinkedPhysicalObject> make() const;

 private:
  friend class Scene;
  friend class SceneFrame;

  unsigned int m_ident;
  std::string m_type = "PERSON";
  cv::Point2f m_place;
  cv::Point3f m_size{0.5F, 0.5F, 1.7F};
  std::optional<cv::Rect> m_box2D;  ///< without one a box of 20 x 60 pixels that moves with x and y
  std::vector<std::pair<unsigned int, double>> m_fathers;
  std::optional<unsigned int> m_predecessor;
  std::vector<unsigned int> m_chain;
  std::optional<unsigned int> m_actor;
};

/// One frame of a scene: its actors, each with its current mobile, in the order in which they are
/// named.
class SceneFrame {
 public:
  /// The mobile with the id; declared at the first call.
  SceneMobile& person(unsigned int ident);
  /// An actor whose list is empty.
  void emptyActor(unsigned int ident);

 private:
  friend class Scene;
  struct Entry {
    unsigned int actor;
    std::optional<SceneMobile> mobile;
  };
  std::list<Entry> m_entries;
};

/// A scene in few words: what an upstream tracker hands over, frame by frame from 1 on.
///
/// The scene owns the mobiles, as father links hold them weakly. A frame's mobiles are made when
/// its actors are first asked for; what is said of the frame later has no effect. A link to an id
/// that no earlier frame declared throws std::out_of_range.
class Scene {
 public:
  /// The id of a walker's mobile at a frame: 302 is the second one's at the third frame.
  static unsigned int idOf(unsigned int walker, unsigned int frame) { return 100 * frame + walker; }

  SceneFrame& frame(unsigned int number) { return m_frames[number]; }
  /// An actor with the walker's number who is seen at every frame from `first` to `last`, `step`
  /// metres further each time. One who has been seen before goes on from his last mobile.
  void walk(unsigned int walker, unsigned int first, unsigned int last, const cv::Point2f& start,
            const cv::Point2f& step = {0.5F, 0.0F});

  /// The actors of the frame.
  const QList<QSharedPointer<kelDataActor>>& actors(unsigned int frame);
  /// The latest mobile with the id.
  const QSharedPointer<kelDataLinkedPhysicalObject>& mobile(unsigned int ident) const {
    return m_mobiles.at(ident).object;
  }
  bool knows(unsigned int ident) const { return m_mobiles.count(ident) > 0; }
  /// Releases the mobiles of the frames before the one given, so that a scene can go on for ever.
  void forgetBefore(unsigned int frame);

 private:
  struct Declared {
    QSharedPointer<kelDataLinkedPhysicalObject> object;
    unsigned int frame;
    unsigned int actor;
  };

  QSharedPointer<kelDataActor> makeActor(unsigned int frame, const SceneFrame::Entry& entry);

  std::map<unsigned int, SceneFrame> m_frames;
  std::map<unsigned int, QList<QSharedPointer<kelDataActor>>> m_actors;
  std::map<unsigned int, Declared> m_mobiles;  ///< by id
  std::map<unsigned int, std::list<QSharedPointer<kelDataLinkedPhysicalObject>>> m_lists;
  std::map<unsigned int, unsigned int> m_lastOfWalker;
};

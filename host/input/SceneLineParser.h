#pragma once

#include <kel/BoundingBox3D.h>

#include <opencv2/core/types.hpp>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// A link to a mobile of an earlier frame, as a scene line gives it.
struct SceneFather {
  std::uint32_t id = 0;
  double reliability = 0.0;
};

/// A mobile as a scene line gives it; what may be derived from the image box may be missing.
struct SceneMobile {
  std::uint32_t id = 0;
  std::string type;
  cv::Rect box2D;                       ///< pixels
  std::optional<BoundingBox3D> box3D;   ///< metres
  std::optional<cv::Point3f> position;  ///< metres
  std::vector<SceneFather> fathers;
};

/// An actor as a scene line gives it.
struct SceneActor {
  std::uint32_t id = 0;
  std::optional<std::string> type;
  std::optional<BoundingBox3D> box3D;  ///< metres
  bool goesOn = false;      ///< the list begins with that of the line parsed before, see `IdLists`
  bool losesFirst = false;  ///< but without the first id of that
  std::vector<std::uint32_t> mobiles;  ///< ids, from the oldest to the current one; of a list that
                                       ///< goes on the current one alone
};

/// One frame of a scene file: its line, taken apart and checked for types but not for meaning.
struct SceneLine {
  std::optional<std::int64_t> frame;  ///< the input's own number of the frame
  std::optional<double> time;         ///< seconds
  std::string image;                  ///< empty when the line names none
  std::vector<SceneMobile> mobiles;
  std::vector<SceneActor> actors;
};

/// What is wanted of a scene.
enum class ScenePart : std::uint8_t {
  whole,
  /// Where everybody is: mobiles without links, actors with their last mobile only. What is left
  /// out is not checked either.
  places,
};

/// Takes the lines of a scene file apart:
///
///     {"frame": 930, "time": 62.0, "image": "images/000001.jpg",
///      "mobiles": [{"id": 101, "type": "PERSON", "box2d": [x, y, width, height],
///                   "box3d": [b0, b1, b2, b3, b4, b5], "position": [x, y, z],
///                   "fathers": [{"id": 95, "reliability": 0.93}]}],
///      "actors": [{"id": 7, "type": "PERSON", "box3d": [...], "mobiles": [80, 95, 101]}]}
///
/// Unknown keys are passed over. A wrong type, a missing key, a number that is not finite or does
/// not fit and a negative width or height throw `ValueProblem` with the reason. The parser
/// keeps its buffers from line to line.
class SceneLineParser {
 public:
  explicit SceneLineParser(ScenePart part = ScenePart::whole);
  ~SceneLineParser();
  SceneLineParser(SceneLineParser&&) noexcept;
  SceneLineParser& operator=(SceneLineParser&&) noexcept;

  /// Replaces `scene` by what the line says.
  void parse(const std::string& line, SceneLine& scene);
  /// In the next line no list of mobiles goes on.
  void forgetLists();
  /// From the next line on none does.
  void readWholeLists() { m_readsWholeLists = true; }

 private:
  struct Buffers;

  void parseInPassing(const std::string& line, SceneLine& scene);

  std::unique_ptr<Buffers> m_buffers;
  ScenePart m_part;
  bool m_readsWholeLists = false;
};

}  // namespace grouptracker

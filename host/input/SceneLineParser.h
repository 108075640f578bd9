#pragma once

#include "host/input/SceneLine.h"

#include <memory>
#include <string>

namespace grouptracker {

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
  SceneLineParser();
  ~SceneLineParser();
  SceneLineParser(const SceneLineParser&) = delete;
  SceneLineParser& operator=(const SceneLineParser&) = delete;

  /// Replaces `scene` by what the line says.
  void parse(const std::string& line, SceneLine& scene);

 private:
  struct Buffers;
  std::unique_ptr<Buffers> m_buffers;
};

}  // namespace grouptracker

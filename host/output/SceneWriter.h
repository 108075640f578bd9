#pragma once

#include "host/base/OutputFile.h"
#include "host/people/InputFrame.h"

#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>

namespace grouptracker {

/// Writes frames as a scene file, one JSON object a line and frame:
///
///     {"frame": 930, "time": 62.0, "image": "images/000001.jpg",
///      "mobiles": [{"id": 101, "type": "PERSON", "box2d": [x, y, width, height],
///                   "box3d": [b0, b1, b2, b3, b4, b5], "position": [x, y, z],
///                   "fathers": [{"id": 95, "reliability": 0.9}]}],
///      "actors": [{"id": 7, "type": "PERSON", "box3d": [...], "mobiles": [80, 95, 101]}]}
///
/// A run over the file gets the same numbers, to the last bit, as one over the frames. The fathers
/// of a frame's mobiles must still be there when it is written. Image files are written as the
/// frame names them; the format takes them as relative to the scene file's folder.
class SceneWriter {
 public:
  explicit SceneWriter(const std::string& path) : m_file(path) {}

  /// Lets the next line carry the camera, as `calibrationText` gives it, under the key
  /// `sceneCalibrationKey`, so that the scene's reader needs no other file; nothing for an empty
  /// text. The format lets every other reader pass over keys that it does not know.
  void carryCalibration(const std::string& camera) { m_calibration = camera; }
  /// Lets the lines say the numbers and times that frames have in their input. Without it frames
  /// have the numbers of their lines.
  void keepNumbers() { m_keepsNumbers = true; }
  /// To be called when frames before the first that is written are left out: references to their
  /// mobiles are then left out, too, for a reader would not know them.
  void startLate() { m_declared.emplace(); }
  void write(const InputFrame& frame);

 private:
  bool isDeclared(const kelDataLinkedPhysicalObject& mobile) const;
  void appendFathers(const kelDataLinkedPhysicalObject& mobile);
  void appendMobile(const kelDataLinkedPhysicalObject& mobile);
  void appendActor(const kelDataActor& actor);

  OutputFile m_file;
  std::string m_calibration;  ///< still to be written
  bool m_keepsNumbers = false;
  std::optional<std::unordered_set<std::uint32_t>>
      m_declared;             ///< ids; none when it need not be known
  fmt::memory_buffer m_line;  ///< kept from frame to frame
};

}  // namespace grouptracker

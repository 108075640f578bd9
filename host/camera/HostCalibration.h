#pragma once

#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>

#include <cstddef>
#include <string>
#include <vector>

namespace grouptracker {

/// A named matrix of numbers in a calibration file, row after row.
struct CalibrationNode {
  std::string name;
  int rows = 0;
  int columns = 0;
  std::vector<double> values;
};

/// A calibration that can be written so that reading it gives the same camera to the last bit.
class HostCalibration : public kelAbstractDataCalibration {
 public:
  /// What a calibration file must hold for this camera.
  virtual std::vector<CalibrationNode> nodes() const = 0;
};

/// Where a calibration's named matrices come from: a file or the line of a scene.
class CalibrationNodes {
 public:
  CalibrationNodes() = default;
  CalibrationNodes(const CalibrationNodes&) = delete;
  CalibrationNodes& operator=(const CalibrationNodes&) = delete;
  virtual ~CalibrationNodes() = default;

  virtual bool has(const char* node) const = 0;
  /// The finite numbers of a node; another count than `counts` names is an `InputError`.
  virtual std::vector<double> numbers(const char* node,
                                      const std::vector<std::size_t>& counts) const = 0;
  /// Throws the `InputError` for a problem with a node.
  [[noreturn]] virtual void fail(const char* node, const std::string& problem) const = 0;
};

/// The camera that the nodes describe, see `readCalibration`; null when they describe none.
QSharedPointer<HostCalibration> makeCalibration(const CalibrationNodes& nodes);

/// Writes a camera as an OpenCV file that `readCalibration` reads to the same camera, to the last
/// bit. A file that cannot be written is an `OutputError`.
void writeCalibration(const HostCalibration& camera, const std::string& path);

/// The camera as a JSON object on one line: each node's numbers, row after row, by its name:
///
///     {"homography": [0.1, 0, -3.2, 0, ...], "camera_position": [0, 0, 5.8]}
std::string calibrationText(const HostCalibration& camera);

}  // namespace grouptracker

#pragma once

#include <kel/kelAbstractDataCalibration.h>

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

}  // namespace grouptracker

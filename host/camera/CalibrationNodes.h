#pragma once

#include "host/camera/HostCalibration.h"

#include <QSharedPointer>

#include <cstddef>
#include <string>
#include <vector>

namespace grouptracker {

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

}  // namespace grouptracker

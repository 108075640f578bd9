#pragma once

#include "host/commands/check/CheckReport.h"
#include "host/people/InputFrame.h"

#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>
#include <opencv2/core/types.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace grouptracker {

/// Looks at an input's frames one after the other and warns of what is legal but suspicious: people
/// underground, of no human size or far away, boxes outside of the image, long stretches without
/// anybody, images that are not there.
class FrameCheck {
 public:
  /// The calibration may be null.
  FrameCheck(CheckReport& report, QSharedPointer<kelAbstractDataCalibration> calibration,
             std::optional<cv::Size> imageSize)
      : m_report(report), m_calibration(std::move(calibration)), m_imageSize(imageSize) {}

  void look(const InputFrame& frame);

 private:
  void lookAtBody(const kelDataLinkedPhysicalObject& mobile, const InputFrame& frame);
  void lookAtBox(const kelDataLinkedPhysicalObject& mobile, const InputFrame& frame);
  void lookForGaps(const InputFrame& frame);

  CheckReport& m_report;
  QSharedPointer<kelAbstractDataCalibration> m_calibration;
  std::optional<cv::Size> m_imageSize;
  std::uint64_t m_framesAlone = 0;  ///< frames since anybody was seen
  bool m_hasSeenAnybody = false;
};

}  // namespace grouptracker

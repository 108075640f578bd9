#pragma once

#include "host/simulation/SimulatedView.h"
#include "host/simulation/Walker.h"

#include <opencv2/core/mat.hpp>

#include <vector>

namespace grouptracker {

/// Draws simulated people as the camera sees them: upright figures on a paved square, each with
/// clothes of its own colours and a shadow on the ground. 8-bit images, blue first.
class FrameRenderer {
 public:
  explicit FrameRenderer(const SimulatedView& view);

  cv::Mat render(const std::vector<Walker>& inView) const;

 private:
  void drawShadow(cv::Mat& shade, const Walker& walker) const;
  void drawFigure(cv::Mat& image, const Walker& walker) const;
  void drawPart(cv::Mat& image, const Walker& walker, double low, double high, double width,
                const cv::Scalar& colour) const;

  const SimulatedView& m_view;
  cv::Mat m_ground;
};

}  // namespace grouptracker

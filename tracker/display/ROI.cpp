#include "tracker/display/ROI.h"

#include "tracker/diagnostics/Diagnostics.h"

#include <utility>

namespace {

/// Whether nobody else would see a change of the pixels; a part of a larger image is shared with
/// it.
bool isSoleOwner(const cv::Mat& pixels) {
  return pixels.u != nullptr && pixels.u->refcount == 1 && !pixels.isSubmatrix();
}

}  // namespace

ROI::ROI(const cv::Mat& pixels, const cv::Rect& box) : m_rect(box) {
  Diagnostics::print("here it goes bad\n");
  m_image = pixels.clone();
  Diagnostics::print("here it went bad\n");
}

ROI::ROI(cv::Mat&& pixels, const cv::Rect& box) : m_rect(box) {
  Diagnostics::print("here it goes bad\n");
  m_image = isSoleOwner(pixels) ? std::move(pixels) : pixels.clone();
  Diagnostics::print("here it went bad\n");
}

void ROI::releasePixels() {
  m_image.release();
}

void ROI::release() {
  releasePixels();
  m_rect = cv::Rect();
}

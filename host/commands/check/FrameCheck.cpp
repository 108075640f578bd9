#include "host/commands/check/FrameCheck.h"

#include <fmt/format.h>

#include <cmath>
#include <filesystem>
#include <system_error>

namespace grouptracker {

namespace {

constexpr double underground = -0.5;       // m
constexpr double smallestBody = 0.4;       // m
constexpr double tallestBody = 3.0;        // m
constexpr double farthestPerson = 300.0;   // m from the camera; nobody can be made out beyond
constexpr std::uint64_t longestGap = 100;  // frames

/// Who it is, or which observation where nobody is followed.
std::string nameOf(const kelDataLinkedPhysicalObject& mobile, const InputFrame& frame) {
  for (const auto& actor : frame.actors) {
    const auto& mobiles = actor->getLinkedPhysicalObjectList();
    if (!mobiles.empty() && mobiles.back().get() == &mobile) {
      return fmt::format("person {}", actor->getIdent());
    }
  }
  return fmt::format("observation {}", mobile.getIdent());
}

}  // namespace

void FrameCheck::look(const InputFrame& frame) {
  for (const MobilePointer& mobile : frame.observed) {
    lookAtBody(*mobile, frame);
    lookAtBox(*mobile, frame);
  }
  lookForGaps(frame);
  std::error_code ignored;
  if (!frame.imageFile.empty() && !std::filesystem::is_regular_file(frame.imageFile, ignored)) {
    m_report.warn("image", frame.place,
                  "there is no image " + frame.imageFile.string() +
                      ", at which a run stops that draws output images");
  }
}

void FrameCheck::lookAtBody(const kelDataLinkedPhysicalObject& mobile, const InputFrame& frame) {
  const BoundingBox3D& body = mobile.getPhysicalObject()->getBoundingBox3D();
  const cv::Point3f& position = mobile.getPhysicalObject()->getPosition();
  const double height = std::abs(static_cast<double>(body.b2) - body.b5);
  if (position.z < underground || std::max(body.b2, body.b5) < 0.0F) {
    m_report.warn("underground", frame.place, nameOf(mobile, frame) + " is underground");
  }
  if (mobile.getPhysicalObject()->getType() == "PERSON" &&
      (height < smallestBody || height > tallestBody)) {
    m_report.warn("height", frame.place,
                  fmt::format("{} is {:.2f} m tall", nameOf(mobile, frame), height));
  }
  if (m_calibration) {
    const cv::Point3d away = cv::Point3d(position) - m_calibration->getPosition();
    if (cv::norm(away) > farthestPerson) {
      m_report.warn("distance", frame.place,
                    fmt::format("{} is {:.0f} m away from the camera", nameOf(mobile, frame),
                                cv::norm(away)));
    }
  }
}

void FrameCheck::lookAtBox(const kelDataLinkedPhysicalObject& mobile, const InputFrame& frame) {
  const cv::Rect& box = mobile.getPhysicalObject()->getBoundingBox2D();
  if (!m_imageSize || box.empty()) {
    return;
  }
  if ((box & cv::Rect(cv::Point(), *m_imageSize)).empty()) {
    m_report.warn("box", frame.place,
                  fmt::format("the box of {} lies outside of the image of {}x{} pixels",
                              nameOf(mobile, frame), m_imageSize->width, m_imageSize->height));
  }
}

void FrameCheck::lookForGaps(const InputFrame& frame) {
  if (frame.observed.empty()) {
    ++m_framesAlone;
    return;
  }
  if (m_hasSeenAnybody && m_framesAlone >= longestGap) {
    m_report.warn("gap", frame.place,
                  fmt::format("before frame {} nobody is seen for {} frames: do the frame numbers "
                              "jump?",
                              frame.number, m_framesAlone));
  }
  m_framesAlone = 0;
  m_hasSeenAnybody = true;
}

}  // namespace grouptracker

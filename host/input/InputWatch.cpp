#include "host/input/InputWatch.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double giant = 3.0 * 1.7;         // m
constexpr double fastest = 12.0;            // m/s
constexpr double usualStep = 0.4;           // s from frame to frame, where nobody tells it
constexpr std::uint64_t fewestPeople = 20;  // people who are looked at

bool areMost(std::uint64_t some, std::uint64_t all) {
  return all >= fewestPeople && 2 * some > all;
}

}  // namespace

void InputWatch::look(const InputFrame& frame) {
  ++m_frames;
  m_images += frame.image || !frame.imageFile.empty() ? 1 : 0;
  for (const MobilePointer& mobile : frame.observed) {
    lookAtBody(*mobile->getPhysicalObject());
  }
  lookAtMoves(frame);
}

/// Distances tell centimetres from metres even where nobody knows the time between frames.
void InputWatch::lookAtMoves(const InputFrame& frame) {
  const double elapsed = frame.time && m_time ? *frame.time - *m_time : usualStep;
  m_placesBefore.swap(m_places);
  notePlaces(frame);
  auto before = m_placesBefore.begin();
  for (const PlacedPerson& now : m_places) {
    before = std::find_if(before, m_placesBefore.end(),
                          [&now](const PlacedPerson& other) { return other.id >= now.id; });
    if (before != m_placesBefore.end() && before->id == now.id) {
      ++m_moves;
      m_leaps += cv::norm(now.place - before->place) > fastest * elapsed ? 1 : 0;
    }
  }
  m_time = frame.time;
}

void InputWatch::notePlaces(const InputFrame& frame) {
  m_places.clear();
  for (const auto& actor : frame.actors) {
    const auto& mobiles = actor->getLinkedPhysicalObjectList();
    if (!mobiles.empty()) {
      const cv::Point3f& at = mobiles.back()->getPhysicalObject()->getPosition();
      m_places.push_back({actor->getIdent(), {at.x, at.y}});
    }
  }
  std::stable_sort(m_places.begin(), m_places.end(),
                   [](const PlacedPerson& a, const PlacedPerson& b) { return a.id < b.id; });
}

void InputWatch::lookAtBody(const kelDataPhysicalObject& body) {
  const BoundingBox3D& space = body.getBoundingBox3D();
  ++m_bodies;
  m_giants += std::abs(static_cast<double>(space.b2) - space.b5) > giant ? 1 : 0;
  const cv::Rect& box = body.getBoundingBox2D();
  if (box.empty()) {
    return;
  }
  ++m_boxes;
  // Of an image of unknown size at least the upper left corner is known.
  const bool isOutside = m_imageSize ? (box & cv::Rect(cv::Point(), *m_imageSize)).empty()
                                     : box.x + box.width <= 0 || box.y + box.height <= 0;
  m_outside += isOutside ? 1 : 0;
}

std::vector<std::string> InputWatch::warnings(const InputDemands& demands) const {
  std::vector<std::string> warnings;
  if (m_bodies == 0 && (m_frames > 0 || demands.takesAll)) {
    warnings.emplace_back(m_frames == 0 ? "it holds no frame" : "nobody is seen in any frame");
  }
  if (demands.needsImages && m_images == 0 && m_frames > 0) {
    warnings.emplace_back(
        "the parameters ask for output images (\"saveOutput:\"), but no frame has an image to draw "
        "on (--images)");
  }
  if (m_frames > 0 && m_frames <= demands.delay) {
    warnings.push_back(fmt::format(
        "{} frames are not more than the process waits (\"temporalWinSize:\" {}), so it decides "
        "nothing",
        m_frames, demands.delay));
  }
  if (areMost(m_outside, m_boxes)) {
    const std::string size =
        m_imageSize ? fmt::format(" of {}x{}", m_imageSize->width, m_imageSize->height) : "";
    warnings.push_back(
        fmt::format("most boxes ({} of {}) lie outside of the image{}: does the camera belong to "
                    "another view?",
                    m_outside, m_boxes, size));
  }
  if (areMost(m_giants, m_bodies)) {
    warnings.push_back(
        fmt::format("most people ({} of {}) are more than {:.1f} m tall: does the camera belong to "
                    "another view, or to other units?",
                    m_giants, m_bodies, giant));
  }
  if (areMost(m_leaps, m_moves)) {
    warnings.push_back(
        fmt::format("most moves ({} of {}) are faster than {:g} m/s: are the places in centimetres "
                    "(--unit cm), "
                    "or is the rate another (--rate)?",
                    m_leaps, m_moves, fastest));
  }
  return warnings;
}

}  // namespace grouptracker

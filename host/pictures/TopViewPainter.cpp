#include "host/pictures/TopViewPainter.h"

#include "host/base/PersonNames.h"
#include "host/pictures/Brush.h"
#include "host/pictures/Labels.h"

#include <fmt/format.h>
#include <opencv2/imgproc.hpp>

#include <cmath>
#include <numbers>

namespace grouptracker {

namespace {

const cv::Scalar paper(250, 250, 250);
const cv::Scalar gridLine(230, 230, 230);
constexpr double gridStep = 5.0;      // metres
constexpr float personRadius = 0.3F;  // metres
constexpr float groupRadius = 0.6F;   // metres around each member

/// Corners of a circle on the ground, so that the hull of a pair has a width.
std::vector<cv::Point> circleAround(const cv::Point2f& place, const GroundMap& map) {
  constexpr int corners = 12;
  std::vector<cv::Point> circle;
  for (int i = 0; i < corners; ++i) {
    const float angle = 2.0F * std::numbers::pi_v<float> * static_cast<float>(i) / corners;
    circle.push_back(
        map.toPicture(place + groupRadius * cv::Point2f(std::cos(angle), std::sin(angle))));
  }
  return circle;
}

/// The longest of 1, 2, 5, 10, ... metres that is shorter than the limit.
double roundLength(double limit) {
  const double power = std::pow(10.0, std::floor(std::log10(limit)));
  const double digits = limit / power;
  return power * (digits >= 5.0 ? 5.0 : digits >= 2.0 ? 2.0 : 1.0);
}

}  // namespace

cv::Mat TopViewPainter::paint(const RunStep& step, const RecentPast& past) {
  takePlaces(step);
  cv::Mat picture = ground();
  const Outlines groups = paintGroups(picture, step, past);
  paintPeople(picture, step, past);
  paintLabels(picture, step, past, groups);
  paintScaleBar(picture);
  return picture;
}

// The ground is turned once, when enough was seen; from then on it stays, so that nobody is lost.
void TopViewPainter::takePlaces(const RunStep& step) {
  std::vector<cv::Point2f> places;
  for (const RunPerson& person : step.persons) {
    if (person.seen) {
      places.push_back(person.seen->ground);
    }
    if (!m_isTurned) {
      m_turn.add(person);
    }
  }
  if (const auto turn = m_isTurned ? std::nullopt : m_turn.matrix()) {
    m_map.turn(*turn);
    m_isTurned = true;
  }
  m_map.include(places);
}

cv::Mat TopViewPainter::ground() {
  if (m_ground.empty() || m_shownOnGround != m_map.shown()) {
    m_ground = cv::Mat(m_size, CV_8UC3, paper);
    m_shownOnGround = m_map.shown();
    paintGrid(m_ground);
  }
  return m_ground.clone();
}

void TopViewPainter::paintGrid(cv::Mat& picture) const {
  const cv::Rect2f shown = m_map.shown();
  for (double x = std::ceil(shown.x / gridStep) * gridStep; x < shown.br().x; x += gridStep) {
    const int column = static_cast<int>(std::lround((x - shown.x) * m_map.scale()));
    cv::line(picture, {column, 0}, {column, m_size.height}, gridLine);
  }
  for (double y = std::ceil(shown.y / gridStep) * gridStep; y < shown.br().y; y += gridStep) {
    const int row = static_cast<int>(std::lround((shown.br().y - y) * m_map.scale()));
    cv::line(picture, {0, row}, {m_size.width, row}, gridLine);
  }
}

TopViewPainter::Outlines TopViewPainter::paintGroups(cv::Mat& picture, const RunStep& step,
                                                     const RecentPast& past) const {
  constexpr double opacity = 0.25;
  Outlines outlines;
  for (const RunGroup& group : step.groups) {
    for (const RunMember& member : group.members) {
      if (member.place && member.person && past.companyOf(*member.person)) {
        const auto circle = circleAround(*member.place, m_map);
        auto& outline = outlines[group.id];
        outline.insert(outline.end(), circle.begin(), circle.end());
      }
    }
  }
  for (const auto& [group, outline] : outlines) {
    brush::hull(picture, outline, past.colourOf(group), opacity);
  }
  return outlines;
}

void TopViewPainter::paintPeople(cv::Mat& picture, const RunStep& step,
                                 const RecentPast& past) const {
  for (const RunPerson& person : step.persons) {
    if (person.seen && !past.companyOf(person.id)) {
      cv::circle(picture, m_map.toPicture(person.seen->ground), personPixels(), brush::grey, 1,
                 cv::LINE_AA);
    }
  }
  for (const RunPerson& person : step.persons) {
    const auto group = past.companyOf(person.id);
    if (!person.seen || !group) {
      continue;
    }
    std::vector<cv::Point> trace;
    for (const TracePoint& point : past.traceOf(person.id)) {
      trace.push_back(m_map.toPicture(point.ground));
    }
    const cv::Scalar colour = past.colourOf(*group);
    brush::trace(picture, trace, colour);
    const cv::Point at = m_map.toPicture(person.seen->ground);
    cv::circle(picture, at, personPixels(), colour, cv::FILLED, cv::LINE_AA);
    cv::circle(picture, at, personPixels(), brush::ink, 1, cv::LINE_AA);
  }
}

int TopViewPainter::personPixels() const {
  constexpr int least = 3;
  return std::max(least, static_cast<int>(personRadius * m_map.scale()));
}

/// Groups first, then their members, and people alone where there is room left.
void TopViewPainter::paintLabels(cv::Mat& picture, const RunStep& step, const RecentPast& past,
                                 const Outlines& groups) const {
  Labels labels(picture, brush::scaleFor(picture));
  const int radius = personPixels();
  const auto areaOf = [&](const RunPerson& person) {
    return cv::Rect(m_map.toPicture(person.seen->ground) - cv::Point(radius, radius),
                    cv::Size(2 * radius, 2 * radius));
  };
  for (const RunPerson& person : step.persons) {
    if (person.seen) {
      labels.keepFree(areaOf(person));
    }
  }
  for (const auto& [group, outline] : groups) {
    labels.addPlate(std::to_string(group), cv::boundingRect(outline), past.colourOf(group));
  }
  for (const bool isInCompany : {true, false}) {
    for (const RunPerson& person : step.persons) {
      if (person.seen && past.companyOf(person.id).has_value() == isInCompany) {
        labels.addName(PersonNames::ofProgram().textOf(person.id), areaOf(person),
                       isInCompany ? brush::ink : brush::grey, paper);
      }
    }
  }
}

void TopViewPainter::paintScaleBar(cv::Mat& picture) const {
  constexpr double longest = 0.25;  // of the picture's width
  constexpr int margin = 15;        // pixels
  const double length = roundLength(longest * m_size.width / m_map.scale());
  const cv::Point right(m_size.width - margin, m_size.height - margin);
  const cv::Point left(right.x - static_cast<int>(length * m_map.scale()), right.y);
  const cv::Point up(0, -6);
  cv::line(picture, left, right, brush::ink, 2);
  cv::line(picture, left, left + up, brush::ink, 2);
  cv::line(picture, right, right + up, brush::ink, 2);
  brush::text(picture, fmt::format("{} m", length), left + cv::Point(4, -8), brush::ink, paper,
              brush::scaleFor(picture));
}

}  // namespace grouptracker

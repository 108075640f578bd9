#include "host/pictures/CameraPainter.h"

#include "host/base/PersonNames.h"
#include "host/pictures/Brush.h"
#include "host/pictures/Labels.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>

namespace grouptracker {

namespace {

using Corners = std::map<std::uint32_t, std::vector<cv::Point>>;

/// The corners of the members' boxes by group, of groups of two and more.
Corners cornersByGroup(const RunStep& step, const RecentPast& past) {
  Corners corners;
  for (const RunPerson& person : step.persons) {
    const auto group = past.companyOf(person.id);
    if (group && person.seen) {
      const cv::Rect& box = person.seen->box2D;
      auto& points = corners[*group];
      points.insert(points.end(),
                    {box.tl(), box.br(), {box.x + box.width, box.y}, {box.x, box.y + box.height}});
    }
  }
  return corners;
}

void paintPerson(cv::Mat& image, const RunPerson& person, const RecentPast& past, double scale) {
  const auto group = past.companyOf(person.id);
  if (!group) {
    cv::rectangle(image, person.seen->box2D, brush::pale, 1, cv::LINE_AA);
    return;
  }
  std::vector<cv::Point> trace;
  for (const TracePoint& point : past.traceOf(person.id)) {
    trace.push_back(point.foot);
  }
  brush::trace(image, trace, past.colourOf(*group));
  cv::rectangle(image, person.seen->box2D, past.colourOf(*group),
                std::max(1, static_cast<int>(std::lround(scale))), cv::LINE_AA);
}

/// Groups first, then their members, and people alone where there is room left.
void paintLabels(cv::Mat& image, const RunStep& step, const RecentPast& past, const Corners& groups,
                 double scale) {
  Labels labels(image, scale);
  for (const RunPerson& person : step.persons) {
    if (person.seen) {
      labels.keepFree(person.seen->box2D);
    }
  }
  for (const auto& [group, corners] : groups) {
    labels.addPlate(std::to_string(group), cv::boundingRect(corners), past.colourOf(group));
  }
  for (const bool isInCompany : {true, false}) {
    for (const RunPerson& person : step.persons) {
      if (person.seen && past.companyOf(person.id).has_value() == isInCompany) {
        labels.addName(PersonNames::ofProgram().textOf(person.id), person.seen->box2D,
                       isInCompany ? brush::white : brush::pale, brush::ink);
      }
    }
  }
}

}  // namespace

void paintOnImage(cv::Mat& image, const RunStep& step, const RecentPast& past) {
  constexpr double opacity = 0.12;  // of the hulls: people shall be seen through them
  const double scale = brush::scaleFor(image);
  const Corners groups = cornersByGroup(step, past);
  for (const auto& [group, corners] : groups) {
    brush::hull(image, corners, past.colourOf(group), opacity);
  }
  for (const RunPerson& person : step.persons) {
    if (person.seen) {
      paintPerson(image, person, past, scale);
    }
  }
  paintLabels(image, step, past, groups, scale);
}

}  // namespace grouptracker

#include "host/pictures/CameraPainter.h"

#include "host/pictures/Brush.h"
#include "host/pictures/GroupPalette.h"
#include "host/pictures/GroupPlates.h"

#include <opencv2/imgproc.hpp>

#include <map>
#include <string>

namespace grouptracker {

namespace {

using Corners = std::map<std::uint32_t, std::vector<cv::Point>>;

/// The corners of the members' boxes by group.
Corners cornersByGroup(const RunStep& step, const RecentPast& past) {
  Corners corners;
  for (const RunPerson& person : step.persons) {
    const auto group = past.groupOf(person.id);
    if (group && person.seen) {
      const cv::Rect& box = person.seen->box2D;
      auto& points = corners[*group];
      points.insert(points.end(),
                    {box.tl(), box.br(), {box.x + box.width, box.y}, {box.x, box.y + box.height}});
    }
  }
  return corners;
}

void paintPerson(cv::Mat& image, const RunPerson& person, const RecentPast& past) {
  const auto group = past.groupOf(person.id);
  const cv::Scalar colour = group ? colourOf(*group) : brush::pale;
  std::vector<cv::Point> trace;
  for (const TracePoint& point : past.traceOf(person.id)) {
    trace.push_back(point.foot);
  }
  brush::trace(image, trace, colour);
  cv::rectangle(image, person.seen->box2D, colour, 1, cv::LINE_AA);
}

void paintName(cv::Mat& image, const RunPerson& person) {
  const std::string name = std::to_string(person.id);
  const cv::Size size = brush::sizeOf(name);
  const cv::Rect& box = person.seen->box2D;
  const cv::Point middle(box.x + box.width / 2, box.br().y);
  brush::text(image, name, middle + cv::Point(-size.width / 2, size.height + 4), brush::white,
              brush::ink);
}

}  // namespace

void paintOnImage(cv::Mat& image, const RunStep& step, const RecentPast& past) {
  constexpr double opacity = 0.12;  // of the hulls: people shall be seen through them
  const Corners groups = cornersByGroup(step, past);
  for (const auto& [group, corners] : groups) {
    brush::hull(image, corners, colourOf(group), opacity);
  }
  for (const RunPerson& person : step.persons) {
    if (person.seen) {
      paintPerson(image, person, past);
    }
  }
  for (const RunPerson& person : step.persons) {
    if (person.seen) {
      paintName(image, person);
    }
  }
  GroupPlates plates(image);
  for (const auto& [group, corners] : groups) {
    plates.add(group, cv::boundingRect(corners));
  }
}

}  // namespace grouptracker

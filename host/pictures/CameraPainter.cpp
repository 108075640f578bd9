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
Corners cornersByGroup(const ReportedStep& step, const RecentPast& past) {
  Corners corners;
  for (const PersonPlace& person : step.people) {
    if (const auto group = past.groupOf(person.person)) {
      const cv::Rect& box = person.box2D;
      auto& points = corners[*group];
      points.insert(points.end(),
                    {box.tl(), box.br(), {box.x + box.width, box.y}, {box.x, box.y + box.height}});
    }
  }
  return corners;
}

}  // namespace

void paintOnImage(cv::Mat& image, const ReportedStep& step, const RecentPast& past) {
  constexpr double opacity = 0.12;  // of the hulls: people shall be seen through them
  const Corners groups = cornersByGroup(step, past);
  for (const auto& [group, corners] : groups) {
    brush::hull(image, corners, colourOf(group), opacity);
  }
  for (const PersonPlace& person : step.people) {
    const auto group = past.groupOf(person.person);
    const cv::Scalar colour = group ? colourOf(*group) : brush::pale;
    std::vector<cv::Point> trace;
    for (const TracePoint& point : past.traceOf(person.person)) {
      trace.push_back(point.foot);
    }
    brush::trace(image, trace, colour);
    cv::rectangle(image, person.box2D, colour, 1, cv::LINE_AA);
  }
  for (const PersonPlace& person : step.people) {
    const std::string name = std::to_string(person.person);
    const cv::Size size = brush::sizeOf(name);
    const cv::Point middle(person.box2D.x + person.box2D.width / 2, person.box2D.br().y);
    brush::text(image, name, middle + cv::Point(-size.width / 2, size.height + 4), brush::white,
                brush::ink);
  }
  GroupPlates plates(image);
  for (const auto& [group, corners] : groups) {
    plates.add(group, cv::boundingRect(corners));
  }
}

}  // namespace grouptracker

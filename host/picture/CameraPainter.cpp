#include "CameraPainter.h"

#include "Brush.h"
#include "GroupPalette.h"

#include <fmt/format.h>

#include <opencv2/imgproc.hpp>

#include <map>

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
  for (const auto& [group, corners] : cornersByGroup(step, past)) {
    const cv::Rect area = cv::boundingRect(corners);
    brush::hull(image, corners, colourOf(group));
    brush::text(image, fmt::format("group {}", group), {area.x, area.y - 5}, colourOf(group));
  }
  for (const PersonPlace& person : step.people) {
    const auto group = past.groupOf(person.person);
    const cv::Scalar colour = group ? colourOf(*group) : brush::grey;
    std::vector<cv::Point> trace;
    for (const TracePoint& point : past.traceOf(person.person)) {
      trace.push_back(point.foot);
    }
    brush::trace(image, trace, colour);
    cv::rectangle(image, person.box2D, colour, 1, cv::LINE_AA);
    brush::text(image, std::to_string(person.person),
                {person.box2D.x, person.box2D.y + person.box2D.height + 13}, brush::white);
  }
}

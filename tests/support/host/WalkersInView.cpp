#include "tests/support/host/WalkersInView.h"

#include <fmt/format.h>

#include <cmath>

namespace grouptracker {

namespace {

constexpr double step = 0.17;  // m from one frame to the next

PeopleCamera trueCamera() {
  PeopleCamera camera;
  camera.imageSize = WalkersInView::imageSize();
  camera.focalLength = 900.0;
  camera.tilt = 0.35;
  camera.roll = 0.03;
  camera.height = 6.5;
  return camera;
}

cv::Point3d placeOf(int person, int frame) {
  const double angle = 0.55 * person;
  const double way =
      step * (frame < WalkersInView::frames / 2 ? frame : WalkersInView::frames - frame);
  return {-4.0 + 0.7 * person + 0.6 * way * std::cos(angle),
          14.0 + 1.1 * person + way * std::sin(angle), 0.0};
}

}  // namespace

WalkersInView::WalkersInView() : m_camera(trueCamera().calibration()) {
  for (int frame = 0; frame < frames; ++frame) {
    for (int person = 1; person <= people; ++person) {
      const cv::Point3d foot = placeOf(person, frame);
      const double height = person == 3 ? 1.1 : 1.7 + 0.02 * (person % 5 - 2);
      const cv::Point2d low = m_camera->worldToImage(foot);
      const cv::Point2d high = m_camera->worldToImage(foot + cv::Point3d(0, 0, height));
      const double width = 0.35 * (low.y - high.y);
      m_boxes.push_back({frame,
                         static_cast<std::uint32_t>(person),
                         {low.x - width / 2.0, high.y, width, low.y - high.y}});
    }
  }
}

std::string WalkersInView::motFile() const {
  std::string text;
  for (auto box = m_boxes.rbegin(); box != m_boxes.rend(); ++box) {
    text += fmt::format("{},{},{:.3f},{:.3f},{:.3f},{:.3f},1,-1,-1,-1\n", box->step + 1,
                        box->person, box->box.x, box->box.y, box->box.width, box->box.height);
  }
  return text;
}

std::string WalkersInView::cvmlFile() const {
  std::string text = "<?xml version=\"1.0\"?>\n<dataset>\n";
  for (std::size_t i = 0; i < m_boxes.size(); ++i) {
    const auto& [frame, person, box] = m_boxes[i];
    text += fmt::format(
        "{}<object id=\"{}\"><box h=\"{}\" w=\"{}\" xc=\"{}\" yc=\"{}\"/></object>\n",
        i % people == 0 ? fmt::format("<frame number=\"{}\"><objectlist>", frame) : "", person,
        box.height, box.width, box.x + box.width / 2.0, box.y + box.height / 2.0);
    text += i % people == people - 1 ? "</objectlist></frame>\n" : "";
  }
  return text + "</dataset>\n";
}

}  // namespace grouptracker

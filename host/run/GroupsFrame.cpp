#include "host/run/GroupsFrame.h"

#include <QMap>
#include <QVariant>

#include <cstddef>

namespace grouptracker {

namespace {

std::optional<std::int64_t> number(const QMap<QString, QVariant>& properties, const char* name) {
  const auto property = properties.find(name);
  return property == properties.end() ? std::nullopt
                                      : std::optional<std::int64_t>(property->toLongLong());
}

/// An old member set is marked with the word "false", a current one with the truth value.
bool isVisible(const QMap<QString, QVariant>& properties) {
  const QVariant value = properties.value("Visible");
  return value.type() == QVariant::Bool && value.toBool();
}

GroupState toState(const GroupReport& report) {
  GroupState state;
  state.id = report.actor->getIdent();
  const auto& mobiles = report.actor->getLinkedPhysicalObjectList();
  std::size_t i = 0;
  for (const auto& mobile : mobiles) {
    const cv::Point3f& at = mobile->getPhysicalObject()->getPosition();
    state.members.push_back({mobile->getIdent(), report.persons[i++], cv::Point2f(at.x, at.y)});
  }
  if (!mobiles.empty()) {
    const cv::Point3f& mean = report.actor->getCurrentPosition();
    state.position = cv::Point2f(mean.x, mean.y);
    state.box2D = report.actor->getBoundingBox2D();
  }
  const auto& properties = report.actor->getSpecificProperties();
  state.isVisible = isVisible(properties);
  state.merge = number(properties, "Merge");
  state.split = number(properties, "Split");
  return state;
}

}  // namespace

GroupsFrame toGroupsFrame(const FrameReport& report) {
  GroupsFrame frame{report.frame, report.reportedFrame, report.inputFrame, report.persons, {}};
  for (const GroupReport& group : report.groups) {
    frame.groups.push_back(toState(group));
  }
  return frame;
}

}  // namespace grouptracker

#include "host/output/GroupsWriter.h"

#include "host/base/JsonLine.h"
#include "host/base/JsonText.h"

namespace grouptracker {

namespace {

using json_line::append;
using json_line::appendArray;
using json_line::Line;

void appendProperties(Line& line, const kelDataActor& actor) {
  const auto& properties = actor.getSpecificProperties();
  const char* separator = "";
  for (auto property = properties.begin(); property != properties.end(); ++property) {
    append(line, "{}{}: {}", separator, jsonText(property.key()), jsonText(property.value()));
    separator = ", ";
  }
}

void appendPlace(Line& line, const kelDataActor& actor) {
  const cv::Point3f& position = actor.getCurrentPosition();
  const cv::Rect& box = actor.getBoundingBox2D();
  const BoundingBox3D& body = actor.getBoundingBox3D();
  append(line, R"("position": [{}, {}, {}], )", jsonNumber(position.x), jsonNumber(position.y),
         jsonNumber(position.z));
  append(line, R"("box2d": [{}, {}, {}, {}], )", box.x, box.y, box.width, box.height);
  append(line, R"("box3d": [{}, {}, {}, {}, {}, {}], )", jsonNumber(body.b0), jsonNumber(body.b1),
         jsonNumber(body.b2), jsonNumber(body.b3), jsonNumber(body.b4), jsonNumber(body.b5));
}

void appendGroup(Line& line, const GroupReport& group) {
  const auto& mobiles = group.actor->getLinkedPhysicalObjectList();
  append(line, R"({{"id": {}, "mobiles": )", group.actor->getIdent());
  appendArray(line, mobiles, [&](const auto& mobile) { append(line, "{}", mobile->getIdent()); });
  append(line, R"(, "persons": )");
  appendArray(line, group.persons, [&](const auto& person) {
    person ? append(line, "{}", *person) : append(line, "null");
  });
  append(line, ", ");
  if (!mobiles.empty()) {
    appendPlace(line, *group.actor);
  }
  append(line, R"("properties": {{)");
  appendProperties(line, *group.actor);
  append(line, "}}}}");
}

}  // namespace

void GroupsWriter::write(const FrameReport& report) {
  m_line.clear();
  append(m_line, R"({{"frame": {}, "reportedFrame": {}, "inputFrame": )", report.frame,
         report.reportedFrame);
  report.inputFrame ? append(m_line, "{}", *report.inputFrame) : append(m_line, "null");
  append(m_line, R"(, "persons": )");
  appendArray(m_line, report.persons, [this](auto person) { append(m_line, "{}", person); });
  append(m_line, R"(, "groups": )");
  appendArray(m_line, report.groups, [this](const auto& group) { appendGroup(m_line, group); });
  append(m_line, "}}\n");
  m_file.writeLines({m_line.data(), m_line.size()});
}

}  // namespace grouptracker

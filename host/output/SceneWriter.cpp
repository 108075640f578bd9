#include "host/output/SceneWriter.h"

#include "host/base/JsonLine.h"
#include "host/base/JsonText.h"
#include "host/camera/SceneCalibration.h"

namespace grouptracker {

namespace {

using json_line::append;
using json_line::appendArray;
using json_line::Line;

void appendBody(Line& line, const BoundingBox3D& body) {
  append(line, R"("box3d": [{}, {}, {}, {}, {}, {}])", jsonNumber(body.b0), jsonNumber(body.b1),
         jsonNumber(body.b2), jsonNumber(body.b3), jsonNumber(body.b4), jsonNumber(body.b5));
}

void appendFathers(Line& line, const kelDataLinkedPhysicalObject& mobile) {
  if (mobile.getFatherLinks().empty()) {
    return;
  }
  append(line, R"(, "fathers": )");
  appendArray(line, mobile.getFatherLinks(), [&line](const auto& link) {
    append(line, R"({{"id": {}, "reliability": {}}})", link->getFather()->getIdent(),
           jsonNumber(link->getReliability()));
  });
}

void appendMobile(Line& line, const kelDataLinkedPhysicalObject& mobile) {
  const kelDataPhysicalObject& seen = *mobile.getPhysicalObject();
  const cv::Rect& box = seen.getBoundingBox2D();
  const cv::Point3f& position = seen.getPosition();
  append(line, R"({{"id": {}, "type": {}, "box2d": [{}, {}, {}, {}], )", mobile.getIdent(),
         jsonText(seen.getType()), box.x, box.y, box.width, box.height);
  appendBody(line, seen.getBoundingBox3D());
  append(line, R"(, "position": [{}, {}, {}])", jsonNumber(position.x), jsonNumber(position.y),
         jsonNumber(position.z));
  appendFathers(line, mobile);
  append(line, "}}");
}

void appendActor(Line& line, const kelDataActor& actor) {
  append(line, R"({{"id": {}, "type": {}, )", actor.getIdent(), jsonText(actor.getType()));
  appendBody(line, actor.getBoundingBox3D());
  append(line, R"(, "mobiles": )");
  appendArray(line, actor.getLinkedPhysicalObjectList(),
              [&line](const auto& mobile) { append(line, "{}", mobile->getIdent()); });
  append(line, "}}");
}

}  // namespace

void SceneWriter::write(const InputFrame& frame) {
  m_line.clear();
  append(m_line, "{{");
  if (!m_calibration.empty()) {
    append(m_line, R"("{}": {}, )", sceneCalibrationKey, m_calibration);
    m_calibration.clear();
  }
  if (!frame.imageFile.empty()) {
    append(m_line, R"("image": {}, )", jsonText(frame.imageFile.string()));
  }
  append(m_line, R"("mobiles": )");
  appendArray(m_line, frame.observed,
              [this](const auto& mobile) { appendMobile(m_line, *mobile); });
  append(m_line, R"(, "actors": )");
  appendArray(m_line, frame.actors, [this](const auto& actor) { appendActor(m_line, *actor); });
  append(m_line, "}}\n");
  m_file.writeLines({m_line.data(), m_line.size()});
}

}  // namespace grouptracker

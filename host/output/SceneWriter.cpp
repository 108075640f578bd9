#include "host/output/SceneWriter.h"

#include "host/base/JsonLine.h"
#include "host/camera/CalibrationReader.h"

namespace grouptracker {

namespace {

using json_line::append;
using json_line::appendArray;
using json_line::Line;

void appendBody(Line& line, const BoundingBox3D& body) {
  append(line, R"("box3d": [{}, {}, {}, {}, {}, {}])", jsonNumber(body.b0), jsonNumber(body.b1),
         jsonNumber(body.b2), jsonNumber(body.b3), jsonNumber(body.b4), jsonNumber(body.b5));
}

}  // namespace

bool SceneWriter::isDeclared(const kelDataLinkedPhysicalObject& mobile) const {
  return !m_declared || m_declared->contains(mobile.getIdent());
}

void SceneWriter::appendFathers(const kelDataLinkedPhysicalObject& mobile) {
  std::vector<const kelDataLinkedPhysicalObjectLink*> links;
  for (const auto& link : mobile.getFatherLinks()) {
    if (isDeclared(*link->getFather())) {
      links.push_back(link.data());
    }
  }
  if (links.empty()) {
    return;
  }
  append(m_line, R"(, "fathers": )");
  appendArray(m_line, links, [this](const auto* link) {
    append(m_line, R"({{"id": {}, "reliability": {}}})", link->getFather()->getIdent(),
           jsonNumber(link->getReliability()));
  });
}

void SceneWriter::appendMobile(const kelDataLinkedPhysicalObject& mobile) {
  const kelDataPhysicalObject& seen = *mobile.getPhysicalObject();
  const cv::Rect& box = seen.getBoundingBox2D();
  const cv::Point3f& position = seen.getPosition();
  append(m_line, R"({{"id": {}, "type": {}, "box2d": [{}, {}, {}, {}], )", mobile.getIdent(),
         jsonText(seen.getType()), box.x, box.y, box.width, box.height);
  appendBody(m_line, seen.getBoundingBox3D());
  append(m_line, R"(, "position": [{}, {}, {}])", jsonNumber(position.x), jsonNumber(position.y),
         jsonNumber(position.z));
  appendFathers(mobile);
  append(m_line, "}}");
  if (m_declared) {
    m_declared->insert(mobile.getIdent());
  }
}

void SceneWriter::appendActor(const kelDataActor& actor) {
  append(m_line, R"({{"id": {}, "type": {}, )", actor.getIdent(), jsonText(actor.getType()));
  appendBody(m_line, actor.getBoundingBox3D());
  std::vector<std::uint32_t> mobiles;
  for (const auto& mobile : actor.getLinkedPhysicalObjectList()) {
    if (isDeclared(*mobile)) {
      mobiles.push_back(mobile->getIdent());
    }
  }
  append(m_line, R"(, "mobiles": )");
  json_line::appendNumbers(m_line, mobiles);
  append(m_line, "}}");
}

void SceneWriter::write(const InputFrame& frame) {
  m_line.clear();
  append(m_line, "{{");
  if (!m_calibration.empty()) {
    append(m_line, R"("{}": {}, )", sceneCalibrationKey, m_calibration);
    m_calibration.clear();
  }
  if (m_keepsNumbers) {
    append(m_line, R"("frame": {}, )", frame.number);
    if (frame.time) {
      append(m_line, R"("time": {}, )", jsonNumber(*frame.time));
    }
  }
  if (!frame.imageFile.empty()) {
    append(m_line, R"("image": {}, )", jsonText(frame.imageFile.string()));
  }
  append(m_line, R"("mobiles": )");
  appendArray(m_line, frame.observed, [this](const auto& mobile) { appendMobile(*mobile); });
  append(m_line, R"(, "actors": )");
  appendArray(m_line, frame.actors, [this](const auto& actor) { appendActor(*actor); });
  append(m_line, "}}\n");
  m_file.writeLines({m_line.data(), m_line.size()});
}

}  // namespace grouptracker

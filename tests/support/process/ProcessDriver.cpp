#include "tests/support/process/ProcessDriver.h"

#include "tests/support/process/StaticsGuard.h"

#include <fmt/format.h>

ProcessDriver::ProcessDriver(const QMap<QString, QVariant>& specific) {
  m_process.setParameterFileName(m_folder.write("parameters.txt", parameterText()));
  m_process.setSceneContext(QSharedPointer<kelDataContext>::create());
  m_process.setSpecificParameters(specific);
}

ProcessDriver::Actors ProcessDriver::step(const Actors& input,
                                          const QSharedPointer<kelDataImage>& image) {
  m_process.init();
  m_process.setActors(input);
  m_process.setImage(image);
  m_process.process();
  return m_process.actors().mid(input.size());
}

std::string toText(const kelDataActor& actor) {
  std::string text = fmt::format("{}:", actor.getIdent());
  const auto& mobiles = actor.getLinkedPhysicalObjectList();
  for (const auto& mobile : mobiles) {
    text += fmt::format(" {}", mobile->getIdent());
  }
  if (!mobiles.empty()) {
    const cv::Point3f& place = actor.getCurrentPosition();
    const cv::Rect& box = actor.getBoundingBox2D();
    text += fmt::format(" at ({}, {}, {}) in ({}, {}, {}, {})", place.x, place.y, place.z, box.x,
                        box.y, box.width, box.height);
  }
  const auto& properties = actor.getSpecificProperties();
  for (auto property = properties.begin(); property != properties.end(); ++property) {
    const char* const quote = property->type() == QVariant::String ? "\"" : "";
    text += fmt::format(", {} {}{}{}", property.key().toStdString(), quote,
                        property->toString().toStdString(), quote);
  }
  return text;
}

std::string toText(const ProcessDriver::Actors& actors) {
  std::string text;
  for (const auto& actor : actors) {
    text += toText(*actor) + '\n';
  }
  return text;
}

#include "host/run/TrackerRun.h"

#include <QLatin1String>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <cmath>
#include <exception>
#include <utility>

namespace grouptracker {

namespace {

QMap<QString, QVariant> specificParameters(const TrackerRunOptions& options) {
  QMap<QString, QVariant> parameters;
  if (!options.printsDiagnostics) {
    parameters["diagnostics"] = false;
  }
  if (!options.dumpsMobiles) {
    parameters["mobileDump"] = false;
  } else if (!options.mobileDumpFile.empty()) {
    parameters["mobileDump"] = QString::fromStdString(options.mobileDumpFile);
    parameters["mobileDumpDescriptor"] = options.mobileDumpDescriptor;
  }
  return parameters;
}

PropertyValue wholeNumber(std::uint64_t number) {
  const bool fits = std::in_range<std::int64_t>(number);
  return fits ? PropertyValue(static_cast<std::int64_t>(number)) : PropertyValue(number);
}

PropertyValue anyNumber(double number) {
  constexpr double mostDigits = 1e16;  // from there on whole numbers are written with an exponent
  if (!std::isfinite(number)) {
    return {};
  }
  const bool isWhole = std::trunc(number) == number && std::abs(number) < mostDigits;
  return isWhole ? PropertyValue(static_cast<std::int64_t>(number)) : PropertyValue(number);
}

PropertyValue toValue(const QVariant& value) {
  switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::Bool:
      return value.toBool();
    case QMetaType::QString:
      return value.toString().toStdString();
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
      return static_cast<std::int64_t>(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
      return wholeNumber(value.toULongLong());
    case QMetaType::Float:
    case QMetaType::Double:
      return anyNumber(value.toDouble());
    default:
      return {};
  }
}

void addProperties(const kelDataActor& actor, RunGroup& group) {
  const auto& properties = actor.getSpecificProperties();
  group.properties.reserve(static_cast<std::size_t>(properties.size()));
  for (auto property = properties.begin(); property != properties.end(); ++property) {
    group.properties.push_back({property.key().toStdString(), toValue(property.value())});
  }
  group.decodeProperties();
}

// Making texts of all the others is half of what a step takes.
void addKnownProperties(const kelDataActor& actor, RunGroup& group) {
  const auto& properties = actor.getSpecificProperties();
  for (auto property = properties.begin(); property != properties.end(); ++property) {
    for (const char* const name : {"Merge", "Split", "TypeOfGroup", "Visible"}) {
      if (property.key() == QLatin1String(name)) {
        group.properties.push_back({name, toValue(property.value())});
      }
    }
  }
  group.decodeProperties();
}

void addExtent(const kelDataActor& actor, RunGroup& group) {
  const BoundingBox3D& body = actor.getBoundingBox3D();
  group.position = actor.getCurrentPosition();
  group.box2D = actor.getBoundingBox2D();
  group.box3D = {body.b0, body.b1, body.b2, body.b3, body.b4, body.b5};
}

}  // namespace

void TrackerRun::configure(const TrackerRunOptions& options) {
  m_options = options;
  m_process->setParameterFileName(options.parameterFile);
  m_process->setCalibration(options.calibration);
  m_process->setSceneContext(options.sceneContext);
  m_process->setSpecificParameters(specificParameters(options));
  m_process->init();
}

RunStep TrackerRun::advance(const InputFrame& frame) {
  ++m_frame;
  if (!m_options.describesSteps) {
    process(frame);
    return {};
  }
  note(frame);
  const auto groups = process(frame);
  RunStep step = takeReported();
  step.groups.reserve(static_cast<std::size_t>(groups.size()));
  for (const auto& group : groups) {
    step.groups.push_back(describe(*group));
  }
  return step;
}

std::optional<OutputError> TrackerRun::outputProblem() const {
  const QStringList problem = m_process->property("outputProblem").toStringList();
  return problem.size() == 2
             ? std::optional(OutputError(problem[0].toStdString(), problem[1].toStdString()))
             : std::nullopt;
}

void TrackerRun::note(const InputFrame& frame) {
  RunStep& noted = m_noted.emplace_back();
  addInput(frame, noted);
  if (!m_options.keepsImages) {
    noted.image.reset();
  } else if (noted.image && m_options.processDrawsOnImages) {
    noted.image = QSharedPointer<kelDataImage>::create(noted.image->mat().clone());
  }
  if (m_noted.size() > std::size_t{m_options.delay} + 1) {
    m_noted.pop_front();
  }
  m_owners.note(frame);
}

QList<QSharedPointer<kelDataActor>> TrackerRun::process(const InputFrame& frame) {
  m_process->setActors(frame.actors);
  m_process->setImage(frame.image);
  try {
    m_process->process();
  } catch (const std::exception& failure) {
    throw ProcessError(m_frame, failure.what());
  } catch (...) {
    throw ProcessError(m_frame, "unknown exception");
  }
  return m_process->actors().mid(frame.actors.size());
}

RunStep TrackerRun::takeReported() {
  // The process subtracts without sign as well: a delay of 2^31 and more wraps around.
  const auto reportedFrame = static_cast<std::int32_t>(m_frame - m_options.delay);
  RunStep step;
  if (reportedFrame >= 1 && m_noted.size() > m_options.delay) {
    step = std::move(m_noted.front());
  }
  step.frame = m_frame;
  step.reportedFrame = reportedFrame;
  return step;
}

RunGroup TrackerRun::describe(const kelDataActor& actor) const {
  RunGroup group;
  group.id = actor.getIdent();
  m_options.keepsProperties ? addProperties(actor, group) : addKnownProperties(actor, group);
  const auto& mobiles = actor.getLinkedPhysicalObjectList();
  group.members.reserve(mobiles.size());
  for (const auto& mobile : mobiles) {
    RunMember& member = group.members.emplace_back();
    member.mobile = mobile->getIdent();
    member.person = m_owners.ownerOf(mobile);
    if (group.isVisible) {
      const cv::Point3f& at = mobile->getPhysicalObject()->getPosition();
      member.place = cv::Point2f(at.x, at.y);
    }
  }
  if (!mobiles.empty()) {
    addExtent(actor, group);
  }
  return group;
}

}  // namespace grouptracker

#include "host/run/ProcessRunner.h"

#include <QMap>
#include <QString>
#include <QVariant>

#include <exception>
#include <utility>

namespace grouptracker {

namespace {

QMap<QString, QVariant> specificParameters(const ProcessOptions& options) {
  QMap<QString, QVariant> parameters;
  if (!options.printsDiagnostics) {
    parameters["diagnostics"] = false;
  }
  if (!options.dumpsMobiles) {
    parameters["mobileDump"] = false;
  } else if (!options.mobileDumpFile.empty()) {
    parameters["mobileDump"] = QString::fromStdString(options.mobileDumpFile);
  }
  return parameters;
}

}  // namespace

ProcessRunner::ProcessRunner(std::unique_ptr<kelAbstractProcessGroupTracker> process,
                             const ProcessOptions& options)
    : m_process(std::move(process)) {
  m_process->setParameterFileName(options.parameterFile);
  m_process->setCalibration(options.calibration);
  m_process->setSceneContext(options.sceneContext);
  m_process->setSpecificParameters(specificParameters(options));
  m_process->init();
}

QList<QSharedPointer<kelDataActor>> ProcessRunner::run(const InputFrame& frame) {
  ++m_frame;
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

}  // namespace grouptracker

#include <kel/kelAbstractProcessGroupTracker.h>
#include <kel/kelAbstractProcessGroupTrackerPrivate.h>

kelAbstractProcessGroupTracker::kelAbstractProcessGroupTracker(
    kelAbstractProcessGroupTrackerPrivate* d, QObject* parent)
    : moxAbstractProcess(parent), d_ptr(d) {
  d_ptr->q = this;
}

kelAbstractProcessGroupTracker::~kelAbstractProcessGroupTracker() = default;

void kelAbstractProcessGroupTracker::setActors(const QList<QSharedPointer<kelDataActor>>& actors) {
  d_ptr->actors = actors;
}

const QList<QSharedPointer<kelDataActor>>& kelAbstractProcessGroupTracker::actors() const {
  return d_ptr->actors;
}

void kelAbstractProcessGroupTracker::setImage(const QSharedPointer<kelDataImage>& image) {
  d_ptr->currentImage = image;
}

void kelAbstractProcessGroupTracker::setParameterFileName(const std::string& fileName) {
  d_ptr->parameterFileName = fileName;
}

void kelAbstractProcessGroupTracker::setCalibration(
    const QSharedPointer<kelAbstractDataCalibration>& calibration) {
  d_ptr->calibration = calibration;
}

void kelAbstractProcessGroupTracker::setSceneContext(
    const QSharedPointer<kelDataContext>& context) {
  d_ptr->sceneContext = context;
}

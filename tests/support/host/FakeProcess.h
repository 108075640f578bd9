#pragma once

#include <kel/kelAbstractProcessGroupTracker.h>
#include <kel/kelAbstractProcessGroupTrackerPrivate.h>

#include <stdexcept>

namespace grouptracker {

/// A process that tracks nothing: behind the input it puts out the groups that it was told.
class FakeProcess : public kelAbstractProcessGroupTracker {
 public:
  using Actors = QList<QSharedPointer<kelDataActor>>;

  FakeProcess()
      : kelAbstractProcessGroupTracker(new kelAbstractProcessGroupTrackerPrivate, nullptr) {}

  QString identifier() const override { return "fake"; }
  void copy(const moxAbstractProcess&) override {}
  bool init() override { return true; }
  void initParameters() override {}
  QMap<QString, QVariant> getSpecificParameters() override { return {}; }
  bool setSpecificParameters(QMap<QString, QVariant>) override { return true; }
  /// Throws instead when it was told to fail.
  void process() override {
    if (fails) {
      throw std::runtime_error("no frame today");
    }
    setActors(actors() + groups);
  }

  Actors groups;
  bool fails = false;
};

}  // namespace grouptracker

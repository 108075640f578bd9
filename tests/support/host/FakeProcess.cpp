#include "tests/support/host/FakeProcess.h"

#include <kel/kelAbstractProcessGroupTrackerPrivate.h>

namespace grouptracker {

FakeProcess::FakeProcess()
    : kelAbstractProcessGroupTracker(new kelAbstractProcessGroupTrackerPrivate, nullptr) {}

void FakeProcess::process() {
  if (fails) {
    throw std::runtime_error("no frame today");
  }
  setActors(actors() + groups);
}

}  // namespace grouptracker

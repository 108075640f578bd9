#pragma once

#include "host/base/Interruption.h"
#include "python/bindings/TableRun.h"

#include <pybind11/pybind11.h>

namespace grouptracker {

/// The parts of the module, each in a source of its own; what they say is shown by help().

void bindTracker(pybind11::module_& module);
void bindTables(pybind11::module_& module);
void bindEvaluation(pybind11::module_& module);

/// A table out of its columns: frame, time, id, positions and boxes, as far as they are there.
TrackTable tableOf(const pybind11::dict& columns);

/// Raises what a signal such as Ctrl-C asks for; the interpreter's lock may be released.
inline void raisePendingSignals() {
  const pybind11::gil_scoped_acquire acquire;
  if (PyErr_CheckSignals() != 0) {
    throw pybind11::error_already_set();
  }
}

/// For calls that may take long: the interpreter's other threads go on, and signals are heard.
class Unlocked {
  pybind11::gil_scoped_release m_release;
  LongWork m_work{raisePendingSignals};
};

}  // namespace grouptracker

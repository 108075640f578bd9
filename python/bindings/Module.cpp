#include "python/bindings/Module.h"

#include "host/base/InputError.h"
#include "host/base/OutputPlace.h"

namespace py = pybind11;

// The name of the function is the macro's.
// NOLINTNEXTLINE(readability-identifier-naming)
PYBIND11_MODULE(_native, module) {
  module.doc() = "The compiled part of grouptracker; see there.";
  module.attr("__version__") = GROUPTRACKER_VERSION;
  // Bad input of any kind is a ValueError with the line that the program prints.
  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      std::rethrow_exception(thrown);
    } catch (const grouptracker::InputError& error) {
      PyErr_SetString(PyExc_ValueError, error.what());
    } catch (const grouptracker::ValueProblem& error) {
      PyErr_SetString(PyExc_ValueError, error.what());
    } catch (const grouptracker::OutputError& error) {
      PyErr_SetString(PyExc_OSError, error.what());
    }
  });
  grouptracker::bindTracker(module);
  grouptracker::bindTables(module);
  grouptracker::bindEvaluation(module);
}

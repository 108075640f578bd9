#include "host/output/RunFile.h"
#include "host/run/EventDetector.h"
#include "library/Tracker.h"
#include "library/TrackerValues.h"
#include "python/bindings/Arrays.h"
#include "python/bindings/Module.h"

#include <fmt/format.h>

#include <cmath>
#include <fstream>
#include <pybind11/functional.h>
#include <pybind11/operators.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace grouptracker {

namespace {

/// The people of a frame. A place or box that is not a number is none.
std::vector<SeenPerson> peopleOf(const py::object& ids, const std::optional<Numbers>& positions,
                                 const std::optional<Numbers>& boxes) {
  const std::vector<std::uint32_t> persons = idsOf(ids);
  const auto places =
      positions ? rowsOf<2>(*positions, "positions") : std::vector<std::array<double, 2>>();
  const auto images = boxes ? rowsOf<4>(*boxes, "boxes") : std::vector<std::array<double, 4>>();
  const auto fits = [&](const auto& rows, bool isGiven) {
    return !isGiven || rows.size() == persons.size();
  };
  if (!fits(places, positions.has_value()) || !fits(images, boxes.has_value())) {
    throw ValueProblem("ids, positions and boxes are not equally many");
  }
  std::vector<SeenPerson> people;
  people.reserve(persons.size());
  for (std::size_t i = 0; i < persons.size(); ++i) {
    SeenPerson& person = people.emplace_back();
    person.id = persons[i];
    if (positions && !std::isnan(places[i][0])) {
      person.position = places[i];
    }
    if (boxes && !std::isnan(images[i][0])) {
      person.box = images[i];
    }
  }
  return people;
}

std::string textOf(const TrackerStep& step) {
  return step.frame ? fmt::format("<Step of frame {}: {} groups, {} alone>", *step.frame,
                                  step.groups.size(), step.alone.size())
                    : "<Step: no frame is decided yet>";
}

std::string textOf(const TrackerEvent& event) {
  return fmt::format("<Event {} of group {}>", event.kind, event.group);
}

/// A list of `Group`, a named tuple of the package: of all that a step tells, callers read groups
/// at every frame, and Python reads nothing faster.
py::list groupList(const TrackerStep& step, const py::object& type) {
  py::list groups(step.groups.size());
  for (std::size_t i = 0; i < step.groups.size(); ++i) {
    const TrackerGroup& group = step.groups[i];
    const py::tuple fields = py::make_tuple(group.id, personList(group.members), group.since,
                                            group.position, group.confidence, group.from);
    auto* const made = PyTuple_Type.tp_new(reinterpret_cast<PyTypeObject*>(type.ptr()),
                                           py::make_tuple(fields).ptr(), nullptr);
    if (made == nullptr) {
      throw py::error_already_set();
    }
    groups[i] = py::reinterpret_steal<py::object>(made);
  }
  return groups;
}

/// For each person the group that it is in, 0 for whoever is in none.
py::array_t<std::int64_t> groupOfEach(const TrackerStep& step, const py::object& ids) {
  const std::vector<std::uint32_t> persons = idsOf(ids);
  py::array_t<std::int64_t> result(static_cast<py::ssize_t>(persons.size()));
  std::int64_t* label = result.mutable_data();
  for (const std::uint32_t person : persons) {
    *label = 0;
    for (const TrackerGroup& group : step.groups) {
      if (std::binary_search(group.members.begin(), group.members.end(), person)) {
        *label = group.id;
      }
    }
    ++label;
  }
  return result;
}

/// The steps of a groups file.
std::vector<TrackerStep> readGroups(const std::string& path) {
  std::ifstream in(path);
  if (!in.is_open()) {
    throw InputError(path, "cannot be opened");
  }
  RunFileReader reader(in, path);
  EventDetector events;
  std::vector<TrackerStep> steps;
  RunStep step;
  while (reader.next(step)) {
    if (step.source != GroupSource::evidence) {
      throw reader.error("holds what the process put out, no groups");
    }
    step.events = events.next(step);
    steps.push_back(toTrackerStep(step));
  }
  return steps;
}

void bindSteps(py::module_& module) {
  const py::object groupType = py::module_::import("grouptracker.group").attr("Group");
  py::class_<TrackerEvent>(module, "Event", "What happened to a group since the frame before.")
      .def_readonly("kind", &TrackerEvent::kind,
                    "'created', 'split', 'merged', 'joined', 'left', 'ended' or 'removed'.")
      .def_readonly("group", &TrackerEvent::group, "Number of the group.")
      .def_readonly("other", &TrackerEvent::other,
                    "The group that merged into it or that it split from, or None.")
      .def_property_readonly(
          "persons", [](const TrackerEvent& event) { return personList(event.persons); },
          "First members, those who came along, joined or left.")
      .def(py::self == py::self)
      .def("__repr__", [](const TrackerEvent& event) { return textOf(event); });
  py::class_<TrackerStep>(
      module, "Step",
      "Who belongs together at one frame. It is true when it is about a frame, and false as long\n"
      "as no frame is decided.")
      .def_readonly("frame", &TrackerStep::frame,
                    "Number of the frame, None as long as none is decided.")
      .def_readonly("time", &TrackerStep::time, "Seconds, or None.")
      .def_property_readonly(
          "groups", [groupType](const TrackerStep& step) { return groupList(step, groupType); },
          "Groups in ascending order of ids.")
      .def_property_readonly(
          "alone", [](const TrackerStep& step) { return personList(step.alone); },
          "Ids of everybody else in view, ascending.")
      .def_readonly("events", &TrackerStep::events, "Events since the frame before.")
      .def("group_of", &groupOfEach, py::arg("ids"),
           "The group of each person, an array of N whole numbers; 0 for whoever is in none.")
      .def(
          "line", [](const TrackerStep& step) { return toLine(step); },
          "The step as a line of a groups file, with its end.")
      .def("__bool__", [](const TrackerStep& step) { return step.frame.has_value(); })
      .def(py::self == py::self)
      .def("__repr__", [](const TrackerStep& step) { return textOf(step); });
}

}  // namespace

void bindTracker(py::module_& module) {
  bindSteps(module);
  py::class_<TrackerSettings>(module, "Settings", "How a tracker is set up.")
      .def(py::init<>())
      .def_readwrite("rate", &TrackerSettings::rate)
      .def_readwrite("parameter_file", &TrackerSettings::parameterFile)
      .def_readwrite("parameter_changes", &TrackerSettings::parameterChanges)
      .def_readwrite("calibration_file", &TrackerSettings::calibrationFile)
      .def_readwrite("homography", &TrackerSettings::homography)
      .def_readwrite("image_size", &TrackerSettings::imageSize)
      .def_readwrite("model_file", &TrackerSettings::modelFile)
      .def_readwrite("model_text", &TrackerSettings::modelText)
      .def_readwrite("look_ahead", &TrackerSettings::lookAhead)
      .def_readwrite("runs_process", &TrackerSettings::runsProcess)
      .def_readwrite("on_diagnostics", &TrackerSettings::onDiagnostics);
  const py::call_guard<py::gil_scoped_release> unlocked;
  py::class_<Tracker>(module, "Tracker")
      .def(py::init<const TrackerSettings&>(), py::arg("settings"), unlocked)
      .def(
          "update",
          [](Tracker& tracker, const py::object& ids, const std::optional<Numbers>& positions,
             const std::optional<Numbers>& boxes, std::optional<double> time,
             std::optional<std::int64_t> frame) {
            const std::vector<SeenPerson> people = peopleOf(ids, positions, boxes);
            const py::gil_scoped_release release;
            return tracker.update(people, time, frame);
          },
          py::arg("ids"), py::arg("positions"), py::arg("boxes"), py::arg("time"), py::arg("frame"))
      .def("decided", &Tracker::decided, unlocked)
      .def("finish", &Tracker::finish, unlocked)
      .def("actors_line", &Tracker::actorsLine, unlocked)
      .def("frames", &Tracker::frames, unlocked);
  module.def("numbers_of", &idsOf, py::arg("ids"));
  module.def("read_groups", &readGroups, py::arg("path"), py::call_guard<Unlocked>());
}

}  // namespace grouptracker

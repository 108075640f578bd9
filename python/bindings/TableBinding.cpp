#include "host/simulation/SceneSimulation.h"
#include "host/simulation/SimulatedSource.h"
#include "host/simulation/SimulatedView.h"
#include "python/bindings/Arrays.h"
#include "python/bindings/Module.h"

#include <algorithm>
#include <map>
#include <pybind11/functional.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace grouptracker {

namespace {

std::vector<double> columnOf(const py::dict& columns, const char* name) {
  if (!columns.contains(name)) {
    return {};
  }
  const auto column = columns[name].cast<Numbers>();
  if (column.ndim() != 1) {
    throw ValueProblem(std::string(name) + ": an array of N is expected");
  }
  return {column.data(), column.data() + column.size()};
}

}  // namespace

TrackTable tableOf(const py::dict& columns) {
  TrackTable table;
  table.frames = columnOf(columns, "frame");
  table.times = columnOf(columns, "time");
  table.ids = columnOf(columns, "id");
  if (columns.contains("positions")) {
    table.positions = rowsOf<2>(columns["positions"].cast<Numbers>(), "positions");
  }
  if (columns.contains("boxes")) {
    table.boxes = rowsOf<4>(columns["boxes"].cast<Numbers>(), "boxes");
  }
  const auto fits = [&](const char* name, const auto& column) {
    return !columns.contains(name) || column.size() == table.ids.size();
  };
  const bool hasPlaces = columns.contains("positions") || columns.contains("boxes");
  if (!hasPlaces || !fits("frame", table.frames) || !fits("time", table.times) ||
      !fits("positions", table.positions) || !fits("boxes", table.boxes)) {
    throw ValueProblem("table: the columns are not equally long");
  }
  return table;
}

namespace {

py::tuple track(const py::dict& columns, const std::optional<double>& rate,
                const TrackerSettings& settings) {
  TrackTable table = tableOf(columns);
  TableGroups found;
  {
    const Unlocked unlocked;
    found = findGroups(std::move(table), rate, settings);
  }
  py::array_t<std::int64_t> groups(static_cast<py::ssize_t>(found.groupOfRows.size()));
  std::copy(found.groupOfRows.begin(), found.groupOfRows.end(), groups.mutable_data());
  return py::make_tuple(std::move(found.steps), groups);
}

/// Tracks of a simulated scene, and what is true at each of its frames.
struct SimulatedTracks {
  std::vector<std::int64_t> frames;
  std::vector<double> times;
  std::vector<std::uint32_t> ids;
  std::vector<double> x;
  std::vector<double> y;
  std::map<std::int64_t, std::map<int, std::vector<std::uint32_t>>> truth;
};

/// The true groups of which two members or more are in view.
std::map<int, std::vector<std::uint32_t>> trueGroups(const std::vector<Walker>& tracked) {
  std::map<int, std::vector<std::uint32_t>> groups;
  for (const Walker& walker : tracked) {
    if (walker.group != GroupEvent::none) {
      groups[walker.group].push_back(walker.id);
    }
  }
  std::erase_if(groups, [](const auto& group) { return group.second.size() < 2; });
  return groups;
}

SimulatedTracks simulate(const SimulationOptions& options) {
  const SimulatedView view;
  SimulatedSource source(options, view);
  SimulatedTracks tracks;
  ObservationStep step;
  while (source.next(step)) {
    for (const Observation& observation : step.observations) {
      tracks.frames.push_back(step.frame);
      tracks.times.push_back(source.time());
      tracks.ids.push_back(observation.person);
      tracks.x.push_back(observation.position->x);
      tracks.y.push_back(observation.position->y);
    }
    tracks.truth[step.frame] = trueGroups(source.tracked());
    LongWork::step();
  }
  return tracks;
}

template <typename Number>
py::array_t<Number> arrayOf(const std::vector<Number>& numbers) {
  return py::array_t<Number>(static_cast<py::ssize_t>(numbers.size()), numbers.data());
}

py::dict simulatedTracks(const SimulationOptions& options) {
  SimulatedTracks tracks;
  {
    const Unlocked unlocked;
    tracks = simulate(options);
  }
  py::dict result;
  result["frame"] = arrayOf(tracks.frames);
  result["time"] = arrayOf(tracks.times);
  result["id"] = arrayOf(tracks.ids);
  result["x"] = arrayOf(tracks.x);
  result["y"] = arrayOf(tracks.y);
  result["truth"] = tracks.truth;
  return result;
}

void bindSimulation(py::module_& module) {
  py::class_<SimulationOptions>(module, "SimulationOptions")
      .def(py::init<>())
      .def_readwrite("seed", &SimulationOptions::seed)
      .def_readwrite("people", &SimulationOptions::people)
      .def_readwrite("groups", &SimulationOptions::groupSizes)
      .def_readwrite("group_share", &SimulationOptions::groupShare)
      .def_readwrite("frames", &SimulationOptions::frames)
      .def_readwrite("seconds", &SimulationOptions::seconds)
      .def_readwrite("rate", &SimulationOptions::rate)
      .def_readwrite("streams", &SimulationOptions::streams)
      .def_readwrite("circles", &SimulationOptions::circles)
      .def_readwrite("waiting", &SimulationOptions::waiting)
      .def_readwrite("queue", &SimulationOptions::queue)
      .def_readwrite("joins", &SimulationOptions::joins)
      .def_readwrite("leaves", &SimulationOptions::leaves)
      .def_readwrite("merges", &SimulationOptions::merges)
      .def_readwrite("splits", &SimulationOptions::splits)
      .def_readwrite("missed", &SimulationOptions::missed)
      .def_readwrite("noise", &SimulationOptions::noise)
      .def_readwrite("jitter", &SimulationOptions::jitter)
      .def_readwrite("gaps", &SimulationOptions::gaps)
      .def_readwrite("renamed", &SimulationOptions::renamed)
      .def_readwrite("switches", &SimulationOptions::switches)
      .def_readwrite("folder", &SimulationOptions::outputFolder);
  module.def("simulate", &simulatedTracks, py::arg("options"));
  module.def(
      "simulate_scene", [](const SimulationOptions& options) { simulateScene(options); },
      py::arg("options"), py::call_guard<Unlocked>());
}

}  // namespace

void bindTables(py::module_& module) {
  module.def("track", &track, py::arg("columns"), py::arg("rate"), py::arg("settings"));
  bindSimulation(module);
}

}  // namespace grouptracker

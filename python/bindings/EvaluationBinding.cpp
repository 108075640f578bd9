#include "host/base/InputError.h"
#include "host/base/OutputFile.h"
#include "host/base/PersonNames.h"
#include "host/evaluation/EvaluationReport.h"
#include "host/evaluation/TruthReader.h"
#include "host/evaluation/learning/EvidenceLearning.h"
#include "library/TrackerValues.h"
#include "python/bindings/Module.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>
#include <utility>

namespace py = pybind11;

namespace grouptracker {

namespace {

GroupTruth alwaysTrue(const std::vector<PersonGroup>& groups) {
  return GroupTruth(joinOverlapping(groups));
}

using NamedGroups = std::map<std::uint32_t, PersonGroup>;  ///< by identity over time

GroupTruth truePerFrame(const std::map<std::int64_t, NamedGroups>& frames) {
  GroupTruth truth;
  for (const auto& [frame, named] : frames) {
    Grouping groups;
    GroupIds ids;
    for (const auto& [id, group] : named) {
      PersonGroup members = group;
      std::sort(members.begin(), members.end());
      groups.push_back(std::move(members));
      ids.push_back(id);
    }
    truth.setAt(frame, std::move(groups), std::move(ids));
  }
  return truth;
}

std::vector<std::vector<PersonName>> namesOf(const Grouping& groups) {
  std::vector<std::vector<PersonName>> names;
  for (const PersonGroup& group : groups) {
    names.push_back(sortedNames(group));
  }
  return names;
}

GroupedFrames toFrames(const std::vector<TrackerStep>& steps) {
  GroupedFrames frames;
  frames.reserve(steps.size());
  for (const TrackerStep& step : steps) {
    LongWork::step();
    if (step.frame) {
      frames.push_back(toFrameGroups(step));
    }
  }
  return frames;
}

std::string evaluateSteps(const std::vector<TrackerStep>& steps, const GroupTruth& truth,
                          std::size_t window, std::size_t together, double tolerance) {
  EvaluationOptions options;
  options.window = {window, together};
  options.eventTolerance = tolerance;
  const GroupedFrames frames = toFrames(steps);
  if (const auto problem = whyAboutOthers(truth, frames)) {
    throw InputError("truth", *problem + "the steps");
  }
  return jsonOf(evaluate(frames, truth, options));
}

/// An annotated table to learn from.
struct Lesson {
  std::string name;
  TrackTable table;
  GroupTruth truth;
};

Lesson lessonOf(const py::tuple& item) {
  Lesson lesson;
  lesson.name = item[0].cast<std::string>();
  lesson.table = tableOf(item[1].cast<py::dict>());
  lesson.truth = item[2].cast<GroupTruth>();
  return lesson;
}

LearnedSequence sequenceOf(Lesson&& lesson, const std::optional<double>& rate, double lookAhead) {
  LearnedSequence sequence(lesson.name, peopleOf(lesson.table, rate, TrackerSettings()),
                           std::move(lesson.truth), lookAhead);
  if (sequence.examples().examples().empty()) {
    throw InputError(lesson.name, "the truth says nothing about two people near each other");
  }
  return sequence;
}

EvidenceModel learnFrom(const py::list& items, const std::vector<std::optional<double>>& rates,
                        double ridge, double lookAhead) {
  std::vector<Lesson> lessons;
  for (const py::handle item : items) {
    lessons.push_back(lessonOf(item.cast<py::tuple>()));
  }
  const Unlocked unlocked;
  LearnedSequences sequences;
  for (std::size_t i = 0; i < lessons.size(); ++i) {
    sequences.push_back(sequenceOf(std::move(lessons[i]), rates[i], lookAhead));
  }
  return learn(sequences, ridge);
}

}  // namespace

void bindEvaluation(py::module_& module) {
  py::class_<GroupTruth>(module, "Truth",
                         "The annotated groups of a sequence: the same for all of it, or for each\n"
                         "frame its own.")
      .def_static("always", &alwaysTrue, py::arg("groups"),
                  "Groups that hold for the whole sequence, a list of lists of ids.")
      .def_static("per_frame", &truePerFrame, py::arg("frames"),
                  "{frame: {group: [ids]}}; the group's number says which groups of several\n"
                  "frames are the same one.")
      .def_property_readonly("is_per_frame", &GroupTruth::isPerFrame,
                             "Whether each frame has groups of its own.")
      .def(
          "at",
          [](const GroupTruth& truth, std::int64_t frame) { return namesOf(truth.at(frame)); },
          py::arg("frame"), "The groups at a frame, lists of ids.")
      .def(
          "whole", [](const GroupTruth& truth) { return namesOf(truth.whole()); },
          "All frames together: whoever was ever in one group is.");
  module.def("read_truth", py::overload_cast<const std::string&>(&readTruth), py::arg("path"),
             py::call_guard<Unlocked>());
  module.def("evaluate", &evaluateSteps, py::arg("steps"), py::arg("truth"), py::arg("window"),
             py::arg("together"), py::arg("event_tolerance"), py::call_guard<Unlocked>());

  py::class_<EvidenceModel>(module, "Model",
                            "What speaks for two people's belonging together, learned from\n"
                            "annotated sequences.")
      .def_static("built_in", &EvidenceModel::builtIn, "The model that is used without another.")
      .def_static(
          "read",
          [](const std::filesystem::path& path) { return EvidenceModel::read(path.string()); },
          py::arg("path"), "Reads what `save` or the command learn wrote.")
      .def_property_readonly("learned_from", &EvidenceModel::learnedFrom,
                             "Names of the sequences that it was learned from.")
      .def("text", &EvidenceModel::text, "The model as JSON.")
      .def(
          "save",
          [](const EvidenceModel& model, const std::filesystem::path& path) {
            OutputFile(path).writeLines(model.text());
          },
          py::arg("path"), "Writes the model into a file, for run --model, too.");
  module.def("learn", &learnFrom, py::arg("lessons"), py::arg("rates"), py::arg("ridge"),
             py::arg("look_ahead"));
}

}  // namespace grouptracker

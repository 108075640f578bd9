#include "host/commands/SimulateCommand.h"

#include "host/base/InputError.h"
#include "host/simulation/SceneSimulation.h"

#include <fmt/format.h>

#include <cstdio>
#include <numeric>
#include <string>

namespace grouptracker {

namespace {

const char* const example = R"(Example:
  grouptracker simulate --seed 7 --people 40 --groups 2,2,3,4,6 --frames 600 --images \
    --output scene
  grouptracker run scene/scene.jsonl --parameters samples/parameters/video.txt \
    --calibration scene/calibration.yml --output groups.jsonl --diagnostics none)";

constexpr int mostPeople = 100000;
constexpr int mostFrames = 100000000;

void declareScene(Options& command, SimulationOptions& options) {
  command.add("--output", options.outputFolder, "where the scene goes; made when absent")
      .required()
      .typeName("FOLDER");
  command.add("--seed", options.seed, "another number, another scene").showDefault();
  command.add("--people", options.people, "people who come in the course of the scene")
      .within(1, mostPeople)
      .showDefault();
  command
      .add("--groups", options.groupSizes,
           "sizes of the groups in which they come, such as 2,2,3; all others come alone")
      .separatedBy(',')
      .within(smallestGroup, largestGroup)
      .typeName("SIZES");
  command
      .add("--group-share", options.groupShare,
           "without --groups: share of the people who come in groups of drawn sizes")
      .within(0.0, 1.0)
      .showDefault();
  command.add("--frames", options.frames, "frames to write").within(1, mostFrames).showDefault();
  command.add("--rate", options.rate, "frames a second").within(0.1, 1000.0).showDefault();
  command.addFlag("--images", options.images, "renders the frames, too");
}

void declareEvents(Options& command, SimulationOptions& options) {
  const auto declare = [&command](const char* name, int& count, const char* meaning) {
    command.add(name, count, meaning).notNegative().showDefault();
  };
  declare("--joins", options.joins, "people on their own who join a group");
  declare("--leaves", options.leaves, "people who leave their group of three or more");
  declare("--merges", options.merges, "groups that merge into another");
  declare("--splits", options.splits, "groups of four or more that split");
}

void declareSensing(Options& command, SimulationOptions& options) {
  command.add("--missed", options.missed, "probability that a person is not observed at a frame")
      .within(0.0, 1.0)
      .showDefault();
  command.add("--noise", options.noise, "deviation of the observed positions in metres")
      .notNegative()
      .showDefault();
}

}  // namespace

Options SimulateCommand::declare(CommandLine& program) {
  Options command =
      program.addCommand("simulate", "Makes a scene of walking people with known groups", example);
  declareScene(command, m_options);
  declareEvents(command, m_options);
  declareSensing(command, m_options);
  command.addFlag("--quiet", m_isQuiet, "no summary");
  return command;
}

int SimulateCommand::run() {
  const auto& sizes = m_options.groupSizes;
  const int grouped = std::accumulate(sizes.begin(), sizes.end(), 0);
  if (grouped > m_options.people) {
    throw InputError("--groups", fmt::format("{} people are in groups, but --people is {}", grouped,
                                             m_options.people));
  }
  const SimulationSummary summary = simulateScene(m_options);
  if (!m_isQuiet) {
    fmt::print(stderr, "{} frames, {} persons, {} groups in {}\n", summary.frames, summary.persons,
               summary.groups, m_options.outputFolder);
  }
  return finished;
}

}  // namespace grouptracker

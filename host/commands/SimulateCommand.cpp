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

void declareScene(CLI::App& command, SimulationOptions& options) {
  command.add_option("--output", options.outputFolder, "where the scene goes; made when absent")
      ->required()
      ->type_name("FOLDER");
  command.add_option("--seed", options.seed, "another number, another scene")
      ->capture_default_str();
  command.add_option("--people", options.people, "people who come in the course of the scene")
      ->check(CLI::Range(1, mostPeople))
      ->capture_default_str();
  command
      .add_option("--groups", options.groupSizes,
                  "sizes of the groups in which they come, such as 2,2,3; all others come alone")
      ->delimiter(',')
      ->check(CLI::Range(smallestGroup, largestGroup))
      ->type_name("SIZES");
  command
      .add_option("--group-share", options.groupShare,
                  "without --groups: share of the people who come in groups of drawn sizes")
      ->check(CLI::Range(0.0, 1.0))
      ->capture_default_str();
  command.add_option("--frames", options.frames, "frames to write")
      ->check(CLI::Range(1, mostFrames))
      ->capture_default_str();
  command.add_option("--rate", options.rate, "frames a second")
      ->check(CLI::Range(0.1, 1000.0))
      ->capture_default_str();
  command.add_flag("--images", options.images, "renders the frames, too");
}

void declareEvents(CLI::App& command, SimulationOptions& options) {
  const auto declare = [&command](const char* name, int& count, const char* meaning) {
    command.add_option(name, count, meaning)->check(CLI::NonNegativeNumber)->capture_default_str();
  };
  declare("--joins", options.joins, "people on their own who join a group");
  declare("--leaves", options.leaves, "people who leave their group of three or more");
  declare("--merges", options.merges, "groups that merge into another");
  declare("--splits", options.splits, "groups of four or more that split");
}

void declareSensing(CLI::App& command, SimulationOptions& options) {
  command
      .add_option("--missed", options.missed,
                  "probability that a person is not observed at a frame")
      ->check(CLI::Range(0.0, 1.0))
      ->capture_default_str();
  command.add_option("--noise", options.noise, "deviation of the observed positions in metres")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
}

}  // namespace

CLI::App* SimulateCommand::declare(CLI::App& program) {
  CLI::App* const command =
      program.add_subcommand("simulate", "Makes a scene of walking people with known groups");
  command->footer(example);
  declareScene(*command, m_options);
  declareEvents(*command, m_options);
  declareSensing(*command, m_options);
  command->add_flag("--quiet", m_isQuiet, "no summary");
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

#include "host/base/InputError.h"
#include "host/base/Log.h"
#include "host/commands/Command.h"
#include "host/simulation/SceneSimulation.h"
#include "host/simulation/SimulationOptions.h"

#include <fmt/format.h>

#include <cstdint>
#include <memory>
#include <numeric>
#include <optional>
#include <string>

namespace grouptracker {

namespace {

/// `grouptracker simulate`: makes a scene with known groups.
class SimulateCommand : public Command {
 public:
  Options declare(CommandLine& program) override;
  int run() override;

 private:
  SimulationOptions m_options;
  std::optional<int> m_frames;
  bool m_isQuiet = false;
};

const char* const simulateExample = R"(Example:
  grouptracker simulate --seed 7 --people 40 --groups 2,2,3,4,6 --frames 600 --images \
    --output scene
  grouptracker simulate --seconds 120 --rate 5 --people 20 --streams 60 --circles 2,3,5 --waiting 6 \
    --queue 10 --jitter 0.05 --gaps 2 --renamed 0.3 --switches 2 --output crowd
  grouptracker run scene/scene.jsonl --parameters samples/parameters/video.txt \
    --calibration scene/calibration.yml --output groups.jsonl --diagnostics none)";

constexpr int mostPeople = 100000;
constexpr int mostFrames = 100000000;
constexpr int mostEvents = 10000;
constexpr double longestScene = 1e6;     // s
constexpr double farthestNoise = 100.0;  // m
constexpr double mostFaults = 1000.0;    // a minute

void declareScene(Options& command, SimulationOptions& options, std::optional<int>& frames) {
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
  command.add("--frames", frames, "frames to write (default 300)").within(1, mostFrames);
  command
      .add("--seconds", options.seconds,
           "length of the scene, in place of --frames: the same seed then gives the same world at "
           "any --rate")
      .within(0.1, longestScene);
  command.add("--rate", options.rate, "frames a second").within(0.1, 1000.0).showDefault();
  command.addFlag("--images", options.images, "renders the frames, too");
}

void declareCrowd(Options& command, SimulationOptions& options) {
  const auto declare = [&command](const char* name, int& count, const char* meaning) {
    command.add(name, count, meaning).within(0, mostPeople).showDefault();
  };
  declare("--streams", options.streams,
          "further people, in two dense streams that pass each other");
  command
      .add("--circles", options.circles,
           "sizes of further groups that stand and talk, such as 2,3,5")
      .separatedBy(',')
      .within(smallestGroup, largestCircle)
      .typeName("SIZES");
  declare("--waiting", options.waiting, "further people who wait, each alone, some side by side");
  declare("--queue", options.queue, "further people who queue, each alone");
}

void declareEvents(Options& command, SimulationOptions& options) {
  const auto declare = [&command](const char* name, int& count, const char* meaning) {
    command.add(name, count, meaning).within(0, mostEvents).showDefault();
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
      .within(0.0, farthestNoise)
      .showDefault();
  command
      .add("--jitter", options.jitter, "deviation in metres of an error that lasts about a second")
      .within(0.0, farthestNoise)
      .showDefault();
  command.add("--gaps", options.gaps, "how often a person is lost for 0.2 to 2.5 s, a minute")
      .within(0.0, mostFaults)
      .showDefault();
  command.add("--renamed", options.renamed, "share of the lost who come back under a new id")
      .within(0.0, 1.0)
      .showDefault();
  command
      .add("--switches", options.switches,
           "how often two who are within 1.2 m exchange their ids for good, a minute")
      .within(0.0, mostFaults)
      .showDefault();
}

/// Checks what no option can say by itself.
void check(const SimulationOptions& options, const std::optional<int>& frames) {
  const auto sum = [](const std::vector<int>& sizes) {
    return std::accumulate(sizes.begin(), sizes.end(), std::int64_t{0});
  };
  if (const auto grouped = sum(options.groupSizes); grouped > options.people) {
    throw InputError("--groups", fmt::format("{} people are in groups, but --people is {}", grouped,
                                             options.people));
  }
  const auto all = std::int64_t{options.people} + options.streams + sum(options.circles) +
                   options.waiting + options.queue;
  if (all > mostPeople) {
    throw InputError("--people", fmt::format("{} people in all are more than {}", all, mostPeople));
  }
  if (options.seconds && frames) {
    throw InputError("--seconds",
                     "is there in place of --frames, so only one of them can be given");
  }
  if (options.seconds && *options.seconds * options.rate > mostFrames) {
    throw InputError("--seconds", fmt::format("gives more than {} frames", mostFrames));
  }
}

}  // namespace

Options SimulateCommand::declare(CommandLine& program) {
  Options command =
      program.addCommand("simulate", "Makes a scene of people with known groups", simulateExample);
  declareScene(command, m_options, m_frames);
  declareCrowd(command, m_options);
  declareEvents(command, m_options);
  declareSensing(command, m_options);
  command.addFlag("--quiet", m_isQuiet, "no summary");
  return command;
}

int SimulateCommand::run() {
  check(m_options, m_frames);
  m_options.frames = m_frames.value_or(m_options.frames);
  const SimulationSummary summary = simulateScene(m_options);
  if (!m_isQuiet) {
    program_log::write(program_log::Level::info,
                       fmt::format("{} frames, {} persons, {} groups in {}", summary.frames,
                                   summary.persons, summary.groups, m_options.outputFolder));
  }
  return finished;
}

std::unique_ptr<Command> makeSimulateCommand() {
  return std::make_unique<SimulateCommand>();
}

}  // namespace grouptracker

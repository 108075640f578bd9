// Times the evidence about pairs of people and the groups made of it beside the process, 50 people
// at the rates that inputs have, each with the parameters that are built in for it. Both get the
// same frames, in turns of some seconds, so that what disturbs one disturbs the other. Everything
// is processor time a frame: groups are looked for at some of the frames only.

#include "benchmarks/MeasuredProcess.h"
#include "host/grouping/GroupFinder.h"
#include "host/run/ParameterFile.h"
#include "host/run/RunParameters.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

using grouptracker::EvidenceModel;
using grouptracker::GroupFinder;
using grouptracker::ParameterFile;
using grouptracker::PeopleFrame;

namespace {

constexpr int people = 50;
constexpr double usefulLookAhead = 3.2;  // seconds, the longest that `run` takes by itself
constexpr double warmUpSeconds = 60.0;   // until what is remembered of pairs is as much as it gets
constexpr double turnSeconds = 4.0;
constexpr int turns = 20;

ParameterFile parametersAt(double rate) {
  std::istringstream text(grouptracker::builtInParameters(rate));
  return grouptracker::readParameterFile(text, "built-in parameters");
}

MeasuredProcess::Options optionsAt(double rate, bool diagnostics) {
  const ParameterFile parameters = parametersAt(rate);
  MeasuredProcess::Options options;
  options.scene.people = people;
  options.scene.rate = static_cast<float>(rate);
  options.window = static_cast<unsigned int>(parameters.number("temporalWinSize:"));
  options.removal = static_cast<unsigned int>(parameters.number("temporalWinForRemoval:"));
  options.diagnostics = diagnostics;
  return options;
}

/// The frames of a scene as the evidence sees them.
class ScenePeople {
 public:
  ScenePeople(const SteadyScene::Options& options, double rate) : m_scene(options), m_rate(rate) {}

  std::vector<PeopleFrame> next(int frames) {
    std::vector<PeopleFrame> result;
    for (int i = 0; i < frames; ++i) {
      ++m_number;
      PeopleFrame& frame =
          result.emplace_back(PeopleFrame{m_number, static_cast<double>(m_number) / m_rate, {}});
      for (const auto& actor : m_scene.next()) {
        const auto& seen = actor->getLinkedPhysicalObjectList().back();
        const cv::Point3f& at = seen->getPhysicalObject()->getPosition();
        frame.people.push_back({actor->getIdent(), {at.x, at.y}});
      }
      std::sort(frame.people.begin(), frame.people.end(),
                [](const auto& a, const auto& b) { return a.person < b.person; });
    }
    return result;
  }

 private:
  SteadyScene m_scene;
  double m_rate;
  std::int64_t m_number = 0;
};

double secondsOf(GroupFinder& finder, const std::vector<PeopleFrame>& frames) {
  const double start = cpuSeconds();
  for (const PeopleFrame& frame : frames) {
    benchmark::DoNotOptimize(finder.next(frame));
  }
  return cpuSeconds() - start;
}

double secondsOf(MeasuredProcess& process, int frames) {
  double seconds = 0.0;
  for (int i = 0; i < frames; ++i) {
    seconds += process.step();
  }
  return seconds;
}

void timeEvidence(benchmark::State& state, double rate, bool diagnostics) {
  const MeasuredProcess::Options options = optionsAt(rate, diagnostics);
  MeasuredProcess process(options);
  ScenePeople scene(options.scene, rate);
  GroupFinder finder(EvidenceModel::builtIn(), std::min(options.window / rate, usefulLookAhead));
  const int before = static_cast<int>(warmUpSeconds * rate);
  secondsOf(process, before);
  secondsOf(finder, scene.next(before));
  const int frames = static_cast<int>(turnSeconds * rate);
  double ofEvidence = 0.0;
  double ofProcess = 0.0;
  for (auto unused : state) {
    const double seconds = secondsOf(finder, scene.next(frames));
    state.SetIterationTime(seconds / frames);
    ofEvidence += seconds;
    ofProcess += secondsOf(process, frames);
  }
  state.counters["process ms"] = 1000.0 * ofProcess / (frames * turns);
  state.counters["share"] = ofEvidence / ofProcess;
}

bool addRates() {
  for (const double rate : {2.5, 10.0, 25.0}) {
    for (const bool diagnostics : {true, false}) {
      const std::string name =
          fmt::format("evidence/{} frames a second/{}", rate, diagnostics ? "on" : "off");
      benchmark::RegisterBenchmark(
          name.c_str(),
          [rate, diagnostics](auto& state) { timeEvidence(state, rate, diagnostics); })
          ->UseManualTime()
          ->Iterations(turns)
          ->Unit(benchmark::kMillisecond);
    }
  }
  return true;
}

const bool areAdded = addRates();

}  // namespace

BENCHMARK_MAIN();

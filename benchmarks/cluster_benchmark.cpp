// Times a frame of the clustering mode, without its lines, against the mean shift alone on the same
// trajectories: first the clustering, that is the features and their mean shift, then the whole
// frame, in which the groups are kept up to date as well. Everything is processor time.

#include "benchmarks/MeasuredProcess.h"
#include "benchmarks/SteadyScene.h"
#include "tests/support/process/StaticsGuard.h"
#include "tracker/clustering/MeanShift.h"
#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Util.h"
#include "tracker/tracking/Group.h"
#include "tracker/tracking/GroupTracker.h"
#include "tracker/tracking/TrajectoryFeatures.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

constexpr unsigned int window = 10;
constexpr unsigned int removal = 20;

void setParameters() {
  setTestParameters();
  Diagnostics::setEnabled(false);
  Util::temporalWinSize = window;
  GroupTracker::maxFrames = removal;
  GroupTracker::maxDistGroupUpdate = 3.0;
  GroupTracker::tolerance = 1.5;
  Group::coherenceThreshold = 8.0;
}

struct Seconds {
  double clustering = std::numeric_limits<double>::infinity();
  double meanShift = std::numeric_limits<double>::infinity();
  double frame = std::numeric_limits<double>::infinity();
};

// The clustering of the frame that the tracker decides about, as the tracker does it.
void timeClustering(GroupTracker& tracker, unsigned int frame, Seconds& best) {
  const double start = cpuSeconds();
  const auto& mobiles = tracker.mobilesAt(frame - window);
  TrajectoryFeatures features(static_cast<int>(window), static_cast<int>(mobiles.size()),
                              {0.0F, 1.0F, 0.0F, 1.0F});
  std::size_t column = 0;
  for (const auto& mobile : mobiles) {
    features.fillPositions(column++, *mobile);
  }
  for (column = 0; column < mobiles.size(); ++column) {
    features.fillDisplacements(column);
  }
  math::matrix<double> centers(features.data().rows(), features.data().cols());
  std::vector<int> sizes(mobiles.size());
  int count = 0;
  const double shiftStart = cpuSeconds();
  MeanShift().meanShift(features.data(), GroupTracker::tolerance, &count, sizes.data(), &centers,
                        nullptr);
  const double end = cpuSeconds();
  best.clustering = std::min(best.clustering, end - start);
  best.meanShift = std::min(best.meanShift, end - shiftStart);
}

void timeFrames(benchmark::State& state, int people) {
  setParameters();
  SteadyScene scene({people, SteadyScene::Grouping::mixed});
  GroupTracker tracker;
  unsigned int frame = 0;
  const auto step = [&] {
    tracker.initFrame(scene.next(), {}, ++frame);
    const double start = cpuSeconds();
    tracker.clusterGroups({});
    return cpuSeconds() - start;
  };
  while (frame < window + removal) {
    step();
  }
  Seconds best;
  for (auto unused : state) {
    const double seconds = step();
    best.frame = std::min(best.frame, seconds);
    timeClustering(tracker, frame, best);
    state.SetIterationTime(seconds);
  }
  state.counters["mean_shift_ms"] = 1e3 * best.meanShift;
  state.counters["clustering_ratio"] = best.clustering / best.meanShift;
  state.counters["frame_ratio"] = best.frame / best.meanShift;
}

bool addCrowds() {
  for (const int people : {20, 100, 500, 2000}) {
    benchmark::RegisterBenchmark(fmt::format("clusterGroups/{}", people).c_str(),
                                 [=](auto& state) { timeFrames(state, people); })
        ->UseManualTime()
        ->Iterations(people >= 500 ? 5 : 50)
        ->Unit(benchmark::kMillisecond);
  }
  return true;
}

const bool areAdded = addCrowds();

}  // namespace

BENCHMARK_MAIN();

// Measures the mean shift against the plain one of the reference, on people's trajectories, and
// checks that both give the same bits. With --points_folder=FOLDER it also writes the points, one
// per line, to FOLDER/sparse_20.txt and so on. Ends with status 1 when results differ.

#include "benchmarks/TrajectoryPoints.h"
#include "benchmarks/reference/Clustering.h"
#include "tracker/clustering/MeanShift.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fstream>
#include <iostream>
#include <limits>
#include <list>
#include <string>

namespace {

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// One set of points with what the reference makes of it.
class Case {
 public:
  Case(const char* company, const TrajectoryPoints& trajectories)
      : name(std::string(company) + "_" + std::to_string(trajectories.data.cols())),
        points(trajectories),
        expected(points.data) {
    const auto start = std::chrono::steady_clock::now();
    expected.reference(points.bandwidth);
    seconds = secondsSince(start);
  }

  bool meanShiftAgrees() const {
    return difference(Clustering(points.data).meanShift(points.bandwidth), expected).empty();
  }

  void writePoints(const std::string& folder) const {
    std::ofstream file(folder + "/" + name + ".txt");
    file.precision(std::numeric_limits<double>::max_digits10);
    for (std::size_t i = 0; i < points.data.cols(); ++i) {
      for (std::size_t r = 0; r < points.data.rows(); ++r) {
        file << points.data(r, i) << (r + 1 < points.data.rows() ? ' ' : '\n');
      }
    }
  }

  std::string name;
  TrajectoryPoints points;
  Clustering expected;
  double seconds = 0.0;  ///< that the reference needed
};

void measureMeanShift(benchmark::State& state, const Case& data, bool withCovariances) {
  Clustering result(data.points.data);
  auto* const covariances = withCovariances ? result.covariances.data() : nullptr;
  double best = std::numeric_limits<double>::infinity();
  for ([[maybe_unused]] auto iteration : state) {
    const auto start = std::chrono::steady_clock::now();
    result.nClusters = 0;
    MeanShift().meanShift(data.points.data, data.points.bandwidth, &result.nClusters,
                          result.sizes.data(), &result.centers, covariances);
    best = std::min(best, secondsSince(start));
  }
  state.counters["best"] = best;  // seconds; what a busy machine disturbs least
  state.counters["clusters"] = result.nClusters;
  state.counters["bandwidth"] = data.points.bandwidth;
}

// The check has run it already, and once is long enough.
void reportReference(benchmark::State& state, const Case& data) {
  for ([[maybe_unused]] auto iteration : state) {
    state.SetIterationTime(data.seconds);
  }
  state.counters["best"] = data.seconds;
}

/// As the tracker calls it, with everything, and the plain way.
void registerBenchmarks(const Case& data) {
  const auto add = [&](const char* what, const auto& function) {
    return benchmark::RegisterBenchmark((what + ("/" + data.name)).c_str(), function)
        ->Unit(benchmark::kMicrosecond);
  };
  add("mean_shift", [&](benchmark::State& state) { measureMeanShift(state, data, false); });
  add("with_covariances", [&](benchmark::State& state) { measureMeanShift(state, data, true); });
  add("reference", [&](benchmark::State& state) { reportReference(state, data); })
      ->UseManualTime()
      ->Iterations(1);
}

/// Takes --points_folder=FOLDER out of the arguments.
std::string takePointsFolder(int& count, char** arguments) {
  const std::string option = "--points_folder=";
  std::string folder;
  int kept = 0;
  for (int i = 0; i < count; ++i) {
    if (std::strncmp(arguments[i], option.c_str(), option.size()) == 0) {
      folder = arguments[i] + option.size();
    } else {
      arguments[kept++] = arguments[i];
    }
  }
  count = kept;
  return folder;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = takePointsFolder(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 2;
  }

  bool allAgree = true;
  std::list<Case> cases;  // a list: the benchmarks refer to its elements
  for (const std::size_t people : {20, 100, 500, 2000}) {
    for (const Company company : {Company::sparse, Company::dense}) {
      const char* const name = company == Company::sparse ? "sparse" : "dense";
      std::cerr << "Computing the reference for " << people << " points, " << name << "...\n";
      const Case& data = cases.emplace_back(name, makeTrajectoryPoints(company, people));
      if (!data.meanShiftAgrees()) {
        std::cerr << data.name << ": the result differs from the reference\n";
        allAgree = false;
      }
      if (!folder.empty()) {
        data.writePoints(folder);
      }
      registerBenchmarks(data);
    }
  }
  benchmark::RunSpecifiedBenchmarks();
  return allAgree ? 0 : 1;
}

// How many frames of 50 people a second each reader yields alone, the writer of groups takes, and
// the process works on: what a run spends beside its tracking. All is processor time.

#include "benchmarks/MeasuredProcess.h"
#include "benchmarks/SteadyScene.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/input/CvmlReader.h"
#include "host/input/MotReader.h"
#include "host/input/ObsmatReader.h"
#include "host/input/SceneReader.h"
#include "host/output/RunFile.h"
#include "host/people/TrackAssembler.h"
#include "host/run/TrackerRun.h"
#include "tests/support/host/FakeProcess.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>

using namespace grouptracker;

namespace {

constexpr int frameCount = 200;
constexpr int people = 50;

QSharedPointer<kelAbstractDataCalibration> camera() {
  return QSharedPointer<GroundPlaneCalibration>::create(
      cv::Matx33d(0.02, 0, -7, 0, -0.03, 24, 0, -0.0005, 1), cv::Point3d(0, 0, 6));
}

/// One line for every person and frame, made by `row(frame, person, x, y)`; x and y in pixels.
template <typename Row>
std::string rows(const Row& row) {
  std::string text;
  for (int frame = 1; frame <= frameCount; ++frame) {
    for (int person = 1; person <= people; ++person) {
      text += row(frame, person, 20.0 + 13.0 * person + 0.5 * frame, 300.0 + 4.0 * person);
    }
  }
  return text;
}

std::unique_ptr<ObservationTable> openObsmat(std::istream& in) {
  return readObsmat(in, "obsmat");
}

std::unique_ptr<ObservationTable> openMot(std::istream& in) {
  auto table = readMot(in, "mot", MotChoice());
  table->finish();
  return table;
}

std::unique_ptr<ObservationTable> openCvml(std::istream& in) {
  return readCvml(in, "cvml");
}

std::string obsmatText() {
  return rows([](int frame, int person, double x, double y) {
    return fmt::format("{} {} {} 0 {} 0 0 0\n", frame, person, x / 20.0, y / 20.0);
  });
}

std::string motText() {
  return rows([](int frame, int person, double x, double y) {
    return fmt::format("{},{},{:.2f},{:.2f},31.5,80.25,0.98,-1,-1,-1\n", frame, person, x, y);
  });
}

std::string cvmlText() {
  return "<dataset>" + rows([](int frame, int person, double x, double y) {
           return fmt::format(
               "{}<object id=\"{}\"><box h=\"80.25\" w=\"31.5\" xc=\"{}\" yc=\"{}\"/></object>{}\n",
               person == 1 ? fmt::format("<frame number=\"{}\"><objectlist>", frame) : "", person,
               x, y, person == people ? "</objectlist></frame>" : "");
         }) +
         "</dataset>";
}

void countFrames(benchmark::State& state, FrameSource& source) {
  InputFrame frame;
  while (source.next(frame)) {
    benchmark::DoNotOptimize(frame.observed.size());
  }
  state.SetItemsProcessed(state.items_processed() + frameCount);
}

void readObservations(benchmark::State& state, const std::string& text,
                      std::unique_ptr<ObservationTable> (*open)(std::istream&)) {
  for ([[maybe_unused]] auto unused : state) {
    std::istringstream in(text);
    TrackAssembler frames(open(in), camera(), LinkOptions());
    countFrames(state, frames);
  }
}

void readScene(benchmark::State& state) {
  SteadyScene steady({people});
  std::string text;
  for (int frame = 0; frame < frameCount; ++frame) {
    text += steady.nextAsLine();
  }
  for ([[maybe_unused]] auto unused : state) {
    std::istringstream in(text);
    SceneReader scene(in, "scene", {}, nullptr);
    countFrames(state, scene);
  }
}

/// Ten groups of three, with what the process says of a group.
QList<QSharedPointer<kelDataActor>> groupsOf(const SteadyScene::Actors& actors) {
  constexpr int groupCount = 10;
  constexpr int size = 3;
  QList<QSharedPointer<kelDataActor>> groups;
  for (int i = 0; i < groupCount; ++i) {
    const auto group = QSharedPointer<kelDataActor>::create();
    for (int member = 0; member < size; ++member) {
      group->addLinkedPhysicalObject(
          actors[size * i + member]->getLinkedPhysicalObjectList().back());
    }
    group->addSpecificProperty("TypeOfGroup", "CROWD");
    group->addSpecificProperty("Visible", true);
    group->addSpecificProperty("AvgIntraDist", "0.62");
    for (const char* const name : {"NumberOfMobiles", "Merge", "Split"}) {
      group->addSpecificProperty(name, size);
    }
    groups.append(group);
  }
  return groups;
}

void writeGroups(benchmark::State& state) {
  SteadyScene steady({people});
  InputFrame frame;
  frame.actors = steady.next();
  auto process = std::make_unique<FakeProcess>();
  process->groups = groupsOf(frame.actors);
  TrackerRun run(std::move(process));
  run.configure({});
  RunFileWriter writer("/dev/null");
  for ([[maybe_unused]] auto unused : state) {
    writer.write(run.advance(frame));
  }
  state.SetItemsProcessed(state.iterations());
}

void process(benchmark::State& state, bool diagnostics) {
  MeasuredProcess::Options options{{people}};
  options.diagnostics = diagnostics;
  MeasuredProcess measured(options);
  measured.warmUp();
  for ([[maybe_unused]] auto unused : state) {
    state.SetIterationTime(measured.step());
  }
  state.SetItemsProcessed(state.iterations());
}

}  // namespace

// Items per second are frames per second.
BENCHMARK(readScene);
BENCHMARK_CAPTURE(readObservations, obsmat, obsmatText(), openObsmat);
BENCHMARK_CAPTURE(readObservations, mot, motText(), openMot);
BENCHMARK_CAPTURE(readObservations, cvml, cvmlText(), openCvml);
BENCHMARK(writeGroups);
BENCHMARK_CAPTURE(process, diagnostics on, true)->UseManualTime()->Iterations(frameCount);
BENCHMARK_CAPTURE(process, diagnostics off, false)->UseManualTime()->Iterations(frameCount);
BENCHMARK_MAIN();

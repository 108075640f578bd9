// Times the film of a scene of 50 people, 1280 x 720 pixels: drawing alone, encoding alone what was
// drawn, and both as a run has them, one beside the other. The three take turns with the same
// pieces of the scene, so that what disturbs one disturbs the others. Real time a picture; `share`
// is that of the film in the slower of drawing and encoding, so 1 is as good as it gets on two
// cores.

#include "benchmarks/SteadyScene.h"
#include "host/pictures/BackgroundTarget.h"
#include "host/pictures/StepPainter.h"
#include "host/pictures/VideoFile.h"
#include "host/run/GroupRun.h"
#include "tests/support/base/Texts.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

using grouptracker::BackgroundTarget;
using grouptracker::RunStep;
using grouptracker::RunSteps;
using grouptracker::StepPainter;
using grouptracker::VideoFile;

namespace {

constexpr double rate = 25.0;     // frames and pictures a second
constexpr int pieceFrames = 100;  // as many steps as pictures
constexpr int pieces = 5;

using Clock = std::chrono::steady_clock;

/// Real seconds that something takes.
template <typename Work>
double secondsOf(const Work& work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

/// The steps of a scene, as a run makes them.
class SceneSteps {
 public:
  SceneSteps() : m_run({.lookAhead = 1.0}) {
    next();  // until there are groups
  }

  RunSteps next() {
    RunSteps steps;
    for (int i = 0; i < pieceFrames; ++i) {
      grouptracker::InputFrame frame;
      frame.number = ++m_number;
      frame.time = static_cast<double>(m_number) / rate;
      frame.actors = m_scene.next();
      for (RunStep& step : m_run.advance(frame)) {
        steps.push_back(std::move(step));
      }
    }
    return steps;
  }

 private:
  SteadyScene m_scene{{}};
  grouptracker::GroupRun m_run;
  std::int64_t m_number = 0;
};

std::vector<cv::Mat> draw(StepPainter& painter, const RunSteps& steps) {
  std::vector<cv::Mat> pictures;
  pictures.reserve(steps.size());
  for (const RunStep& step : steps) {
    pictures.push_back(painter.paint(step));
  }
  return pictures;
}

void encode(VideoFile& film, const std::vector<cv::Mat>& pictures) {
  for (const cv::Mat& picture : pictures) {
    film.add(picture, 0);
  }
}

void timeFilm(benchmark::State& state) {
  const TempFolder folder;
  SceneSteps scene;
  StepPainter alone(false);
  StepPainter painter(false);
  VideoFile encoded((folder.path() / "encoded.mp4").string(), rate);
  double drawing = 0.0;
  double encoding = 0.0;
  double both = 0.0;
  std::size_t count = 0;
  for (auto unused : state) {
    const RunSteps steps = scene.next();
    count += steps.size();
    std::vector<cv::Mat> pictures;
    drawing += secondsOf([&] { pictures = draw(alone, steps); });
    encoding += secondsOf([&] { encode(encoded, pictures); });
    const double seconds = secondsOf([&] {
      BackgroundTarget film(
          std::make_unique<VideoFile>((folder.path() / "film.mp4").string(), rate));
      for (const RunStep& step : steps) {
        film.add(painter.paint(step), step.reportedFrame);
      }
      film.finish();
    });
    both += seconds;
    state.SetIterationTime(seconds);
  }
  const auto perPicture = 1000.0 / static_cast<double>(count);
  state.counters["drawing ms"] = perPicture * drawing;
  state.counters["encoding ms"] = perPicture * encoding;
  state.counters["film ms"] = perPicture * both;
  state.counters["pictures a second"] = static_cast<double>(count) / both;
  state.counters["share"] = both / std::max(drawing, encoding);
}

}  // namespace

BENCHMARK(timeFilm)->Name("film")->UseManualTime()->Iterations(pieces)->Unit(
    benchmark::kMillisecond);

BENCHMARK_MAIN();

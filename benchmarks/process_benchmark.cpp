// Times the whole process, frame by frame, against what printf, std::to_chars, NumberText and
// memcpy need for the same text. Everything is processor time, so that other programs disturb
// little.

#include "benchmarks/FormattedText.h"
#include "benchmarks/MeasuredProcess.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <functional>
#include <string>

namespace {

int framesFor(int people) {
  return people >= 1000 ? 8 : (people >= 200 ? 40 : 150);
}

void timeProcess(benchmark::State& state, const MeasuredProcess::Options& options) {
  MeasuredProcess process(options);
  process.warmUp();
  for (auto unused : state) {
    state.SetIterationTime(process.step());
  }
}

// Standard output leads to nowhere while a text is written, as it does while the process runs.
void timeWriting(benchmark::State& state, int people,
                 const std::function<void(const FormattedText&, const FormattedText&)>& write) {
  MeasuredProcess process(MeasuredProcess::Options{{people, SteadyScene::Grouping::mixed}});
  process.warmUp();
  const MeasuredProcess::Texts texts = process.record();
  const FormattedText printed(texts.printed);
  const FormattedText dumped(texts.dumped);
  for (auto unused : state) {
    const double start = cpuSeconds();
    write(printed, dumped);
    state.SetIterationTime(cpuSeconds() - start);
  }
  state.counters["bytes"] = static_cast<double>(printed.size() + dumped.size());
}

void add(const std::string& name, const std::function<void(benchmark::State&)>& function,
         int frames) {
  benchmark::RegisterBenchmark(name.c_str(), function)
      ->UseManualTime()
      ->Iterations(frames)
      ->Unit(benchmark::kMillisecond);
}

void addProcess(const std::string& name, const MeasuredProcess::Options& options) {
  add(
      "process/" + name, [=](auto& state) { timeProcess(state, options); },
      framesFor(options.scene.people));
}

void addSizes() {
  for (const int people : {10, 50, 200, 1000}) {
    MeasuredProcess::Options options{{people, SteadyScene::Grouping::mixed}};
    addProcess(fmt::format("{}/on", people), options);
    options.diagnostics = false;
    addProcess(fmt::format("{}/off", people), options);
    const int frames = std::max(framesFor(people) / 10, 3);
    add(
        fmt::format("printf/{}", people),
        [=](auto& state) {
          timeWriting(state, people, [](const auto& printed, const auto& dumped) {
            printed.writeWithPrintf();
            dumped.writeWithStream("/dev/null");
          });
        },
        frames);
    const auto addWriting = [&](const char* name, void (FormattedText::*write)() const) {
      add(
          fmt::format("{}/{}", name, people),
          [=](auto& state) {
            timeWriting(state, people, [write](const auto& printed, const auto& dumped) {
              (printed.*write)();
              (dumped.*write)();
            });
          },
          frames);
    };
    addWriting("to_chars", &FormattedText::writeWithToChars);
    addWriting("number_text", &FormattedText::writeWithNumberText);
    addWriting("copy", &FormattedText::copy);
  }
}

void addWindows() {
  const SteadyScene::Options fifty{50, SteadyScene::Grouping::mixed};
  addProcess("50/window 10, removal 60", {fifty, 10, 60});
  addProcess("50/window 10, removal 120", {fifty, 10, 120});
  addProcess("50/window 20, removal 60", {fifty, 20, 60});
  addProcess("60/small groups", {{60, SteadyScene::Grouping::small}});
  addProcess("60/one dense group", {{60, SteadyScene::Grouping::dense}});
}

bool addAll() {
  addSizes();
  addWindows();
  return true;
}

const bool areAdded = addAll();

}  // namespace

BENCHMARK_MAIN();

#include "host/evaluation/search/TrialRunner.h"

#include "host/evaluation/FrameScores.h"
#include "host/evaluation/ScoredSteps.h"
#include "host/run/ParameterFile.h"
#include "host/run/PluginLoader.h"
#include "host/run/TrackerRun.h"

#include <cstddef>
#include <utility>

namespace grouptracker {

namespace {

double slidingScore(const GroupedFrames& run, const GroupTruth& truth) {
  constexpr std::size_t starts = 5;
  const WindowOptions options;
  const WindowedRun windowed(run);
  double sum = 0.0;
  for (std::size_t i = 0; i < starts; ++i) {
    sum += meanMitre(windowed.windows(i * options.length / starts, truth, options)).f1;
  }
  return sum / static_cast<double>(starts);
}

double scoreOf(const GroupedFrames& run, const GroupTruth& truth, TunedScore score) {
  constexpr std::size_t mostlyCorrect = 1;  // among the tolerances: two thirds
  switch (score) {
    case TunedScore::sliding:
      return slidingScore(run, truth);
    case TunedScore::windowed:
      return meanMitre(windowsOf(run, truth, {})).f1;
    case TunedScore::whole:
      return groupMitre(wholeSequence(run, truth, {})).f1;
    case TunedScore::correctGroups:
      return scoreFrames(stepsOf(run, truth)).correctGroups[mostlyCorrect].scores().f1;
    case TunedScore::pairs:
      return scoreFrames(stepsOf(run, truth)).pairs.scores().f1;
  }
  return 0.0;
}

}  // namespace

double runTrial(TunedSequence& sequence, const TrialSettings& settings, TunedScore score,
                const std::string& parameterFile) {
  const OpenedInput input = sequence.input.open(settings.links);
  TrackerRunOptions setUp;
  setUp.parameterFile = parameterFile;
  setUp.delay = readParameterFile(parameterFile).delay;
  setUp.calibration = input.calibration;
  setUp.printsDiagnostics = false;
  setUp.dumpsMobiles = false;
  setUp.keepsProperties = false;
  TrackerRun tracker(loadGroupTracker(""));
  tracker.configure(setUp);
  GroupedFrames run;
  ProcessGroups groups;
  const auto add = [&](const RunStep& step) {
    if (auto frame = groups.next(step)) {
      run.push_back(*std::move(frame));
    }
  };
  for (InputFrame frame; input.frames->next(frame);) {
    add(tracker.advance(frame));
  }
  for (const RunStep& step : tracker.finish()) {
    add(step);
  }
  return scoreOf(run, sequence.truth, score);
}

}  // namespace grouptracker

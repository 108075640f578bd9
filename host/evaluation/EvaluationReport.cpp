#include "host/evaluation/EvaluationReport.h"

#include <fmt/format.h>

#include <array>

namespace grouptracker {

EvaluationReport evaluate(const RunSteps& run, const GroupTruth& truth,
                          const EvaluationOptions& options) {
  EvaluationReport report;
  const auto windows = windowsOf(run, truth, options.window);
  report.steps = run.size();
  report.windows = windows.size();
  report.windowed = meanMitre(windows);
  report.whole = groupMitre(wholeSequence(run, truth, options.window));
  report.frames = scoreFrames(stepsOf(run, truth));
  report.time = scoreTime(run, truth);
  if (truth.isPerFrame()) {
    report.events = scoreEvents(run, truth, options.eventTolerance);
  }
  return report;
}

namespace {

constexpr std::array<const char*, 3> toleranceNames{"1", "2/3", "1/2"};

void addRow(std::string& table, const std::string& name, const PrecisionRecall& scores) {
  table += fmt::format("{:<34} {:9.3f} {:9.3f} {:9.3f}\n", name, scores.precision, scores.recall,
                       scores.f1);
}

void addNumber(std::string& table, const char* name, double number, int digits = 0) {
  table += fmt::format("{:<34} {:29.{}f}\n", name, number, digits);
}

std::string jsonScores(const PrecisionRecall& scores) {
  return fmt::format(R"({{"precision": {:.6f}, "recall": {:.6f}, "f1": {:.6f}}})", scores.precision,
                     scores.recall, scores.f1);
}

}  // namespace

std::string tableOf(const EvaluationReport& report) {
  std::string table = fmt::format("{:<34} {:>9} {:>9} {:>9}\n", "", "precision", "recall", "F1");
  addRow(table, fmt::format("group MITRE, {} windows", report.windows), report.windowed);
  if (report.baselines) {
    addRow(table, "  everybody alone", report.baselines->alone);
    addRow(table, "  crude rule over the window", report.baselines->crudeRule);
  }
  addRow(table, "group MITRE, whole sequence", report.whole);
  for (std::size_t i = 0; i < toleranceNames.size(); ++i) {
    addRow(table, fmt::format("correct groups, T = {}", toleranceNames[i]),
           report.frames.correctGroups[i].scores());
  }
  addRow(table, "pairs", report.frames.pairs.scores());
  if (report.events) {
    addRow(table, "merges", report.events->merges.scores());
    addRow(table, "splits", report.events->splits.scores());
  }
  addNumber(table, "adjusted Rand index", report.frames.adjustedRand, 3);
  addNumber(table, "true groups", report.time.trueGroups);
  addNumber(table, "  never found", report.time.neverFound);
  addNumber(table, "  frames until found, mean", report.time.untilFound, 1);
  addNumber(table, "  changes of identity", report.time.identityChanges);
  addNumber(table, "found groups", report.time.foundGroups);
  addNumber(table, "  never a true one", report.time.falseGroups);
  return table;
}

std::string jsonOf(const EvaluationReport& report) {
  std::string json = fmt::format(
      R"({{"steps": {}, "windows": {}, "windowedMitre": {}, "wholeMitre": {})", report.steps,
      report.windows, jsonScores(report.windowed), jsonScores(report.whole));
  for (std::size_t i = 0; i < toleranceNames.size(); ++i) {
    json += fmt::format(R"(, "correctGroups {}": {})", toleranceNames[i],
                        jsonScores(report.frames.correctGroups[i].scores()));
  }
  json += fmt::format(R"(, "pairs": {}, "adjustedRand": {:.6f})",
                      jsonScores(report.frames.pairs.scores()), report.frames.adjustedRand);
  const TimeScores& time = report.time;
  json += fmt::format(
      R"(, "trueGroups": {}, "neverFound": {}, "framesUntilFound": {:.6f}, "identityChanges": {})",
      time.trueGroups, time.neverFound, time.untilFound, time.identityChanges);
  json +=
      fmt::format(R"(, "foundGroups": {}, "falseGroups": {})", time.foundGroups, time.falseGroups);
  if (report.events) {
    json +=
        fmt::format(R"(, "merges": {}, "splits": {})", jsonScores(report.events->merges.scores()),
                    jsonScores(report.events->splits.scores()));
  }
  if (report.baselines) {
    json +=
        fmt::format(R"(, "baselines": {{"alone": {}, "crudeRule": {}}})",
                    jsonScores(report.baselines->alone), jsonScores(report.baselines->crudeRule));
  }
  return json + "}\n";
}

}  // namespace grouptracker

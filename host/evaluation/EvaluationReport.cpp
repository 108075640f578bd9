#include "host/evaluation/EvaluationReport.h"

#include "host/base/JsonLine.h"

#include <fmt/format.h>

#include <array>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace grouptracker {

EvaluationReport evaluate(const GroupedFrames& run, const GroupTruth& truth,
                          const EvaluationOptions& options) {
  EvaluationReport report;
  const GroupedFrames frames = annotated(run, truth);
  const auto windows = windowsOf(frames, truth, options.window);
  report.steps = run.size();
  report.annotated = frames.size();
  report.windows = windows.size();
  report.windowed = meanMitre(windows);
  report.whole = groupMitre(wholeSequence(frames, truth, options.window));
  report.frames = scoreFrames(stepsOf(frames, truth));
  report.time = scoreTime(frames, truth);
  report.identities = identityMatches(frames, truth);
  report.flicker = flickerOf(run);
  if (truth.isPerFrame()) {
    report.events = scoreEvents(run, truth, options.eventTolerance);
  }
  return report;
}

namespace {

constexpr std::array<const char*, 3> toleranceNames{"1", "2/3", "1/2"};

/// A number, and with how many digits behind the point people want it.
struct Number {
  double value = 0.0;
  int digits = 0;
};

/// One line of the table, and its key in the JSON object.
struct Row {
  std::string name;
  std::string key;
  std::variant<PrecisionRecall, Number> score;
};

using Rows = std::vector<Row>;

void addPartitionRows(const EvaluationReport& report, Rows& rows) {
  rows.push_back(
      {fmt::format("group MITRE, {} windows", report.windows), "windowedMitre", report.windowed});
  if (report.baselines) {
    rows.push_back({"  everybody alone", "alone", report.baselines->alone});
    rows.push_back({"  crude rule over the window", "crudeRule", report.baselines->crudeRule});
  }
  rows.push_back({"group MITRE, whole sequence", "wholeMitre", report.whole});
  for (std::size_t i = 0; i < toleranceNames.size(); ++i) {
    rows.push_back({fmt::format("correct groups, T = {}", toleranceNames[i]),
                    fmt::format("correctGroups {}", toleranceNames[i]),
                    report.frames.correctGroups[i].scores()});
  }
  rows.push_back({"pairs", "pairs", report.frames.pairs.scores()});
  rows.push_back({"identity of members", "identity", report.identities.scores()});
}

void addEventRows(const EventScores& events, Rows& rows) {
  for (const auto& [name, score] :
       {std::pair("merge", &events.merges), std::pair("split", &events.splits)}) {
    rows.push_back({fmt::format("{}s", name), fmt::format("{}s", name), score->counts.scores()});
    rows.push_back({"  true ones", name == std::string_view("merge") ? "trueMerges" : "trueSplits",
                    Number{static_cast<double>(score->counts.truth), 0}});
    rows.push_back({"  delay, mean, s", fmt::format("{}Delay", name), Number{score->delay, 2}});
  }
}

void addTimeRows(const EvaluationReport& report, Rows& rows) {
  const TimeScores& time = report.time;
  const auto add = [&rows](const char* name, const char* key, double value, int digits = 0) {
    rows.push_back({name, key, Number{value, digits}});
  };
  add("adjusted Rand index", "adjustedRand", report.frames.adjustedRand, 3);
  add("true groups", "trueGroups", time.trueGroups);
  add("  never found", "neverFound", time.neverFound);
  add("  frames until found, mean", "framesUntilFound", time.untilFound, 1);
  add("  changes of identity", "identityChanges", time.identityChanges);
  add("  the same, per true group", "identityChangesPerGroup", time.changesPerGroup(), 3);
  add("found groups", "foundGroups", time.foundGroups);
  add("  never a true one", "falseGroups", time.falseGroups);
  add("  the same, share", "falseShare", time.falseShare(), 3);
  add("joins", "joins", report.flicker.joins);
  add("  back within 2 s", "joinsBack", report.flicker.back);
  add("  the same, share", "joinsBackShare", report.flicker.share(), 3);
}

Rows rowsOf(const EvaluationReport& report) {
  Rows rows;
  addPartitionRows(report, rows);
  if (report.events) {
    addEventRows(*report.events, rows);
  }
  addTimeRows(report, rows);
  return rows;
}

std::string lineOf(const Row& row) {
  if (const auto* number = std::get_if<Number>(&row.score)) {
    return fmt::format("{:<34} {:29.{}f}\n", row.name, number->value, number->digits);
  }
  const auto& scores = std::get<PrecisionRecall>(row.score);
  return fmt::format("{:<34} {:9.3f} {:9.3f} {:9.3f}\n", row.name, scores.precision, scores.recall,
                     scores.f1);
}

void appendScores(json_line::Line& json, const PrecisionRecall& scores) {
  json_line::append(json, R"({{"precision": {:.6f}, "recall": {:.6f}, "f1": {:.6f}}})",
                    scores.precision, scores.recall, scores.f1);
}

void appendRow(json_line::Line& json, const Row& row) {
  json_line::append(json, ", {}: ", jsonText(row.key));
  if (const auto* number = std::get_if<Number>(&row.score)) {
    json_line::append(json, "{:.{}f}", number->value, number->digits > 0 ? 6 : 0);
  } else {
    appendScores(json, std::get<PrecisionRecall>(row.score));
  }
}

/// The one number that stands for a row.
Number mainNumber(const Row& row) {
  const auto* number = std::get_if<Number>(&row.score);
  return number != nullptr ? *number : Number{std::get<PrecisionRecall>(row.score).f1, 3};
}

/// How many frames count, where not all do.
std::string coverageOf(const EvaluationReport& report) {
  return report.annotated == report.steps
             ? std::string()
             : fmt::format("{} of {} frames are annotated, only these count\n", report.annotated,
                           report.steps);
}

}  // namespace

std::string tableOf(const EvaluationReport& report) {
  std::string table = coverageOf(report);
  table += fmt::format("{:<34} {:>9} {:>9} {:>9}\n", "", "precision", "recall", "F1");
  for (const Row& row : rowsOf(report)) {
    table += lineOf(row);
  }
  return table;
}

std::string comparisonOf(const EvaluationReport& report, const EvaluationReport& other) {
  std::string table = coverageOf(report);
  table += fmt::format("{:<34} {:>9} {:>9} {:>9}\n", "F1 or number", "this", "other", "change");
  const Rows rows = rowsOf(report);
  const Rows others = rowsOf(other);
  for (const Row& row : rows) {
    for (const Row& same : others) {
      if (same.key == row.key) {
        const auto [value, digits] = mainNumber(row);
        const double before = mainNumber(same).value;
        table += fmt::format("{:<34} {:9.{}f} {:9.{}f} {:+9.{}f}\n", row.name, value, digits,
                             before, digits, value - before, digits);
      }
    }
  }
  return table;
}

std::string jsonOf(const EvaluationReport& report) {
  json_line::Line json;
  json_line::append(json, R"({{"steps": {}, "annotatedSteps": {}, "windows": {})", report.steps,
                    report.annotated, report.windows);
  for (const Row& row : rowsOf(report)) {
    if (row.key != "alone" && row.key != "crudeRule") {
      appendRow(json, row);
    }
  }
  if (report.baselines) {
    json_line::append(json, R"(, "baselines": {{"alone": )");
    appendScores(json, report.baselines->alone);
    json_line::append(json, R"(, "crudeRule": )");
    appendScores(json, report.baselines->crudeRule);
    json_line::append(json, "}}");
  }
  json_line::append(json, "}}\n");
  return fmt::to_string(json);
}

}  // namespace grouptracker

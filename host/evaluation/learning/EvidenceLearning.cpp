#include "host/evaluation/learning/EvidenceLearning.h"

#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/learning/LogisticFit.h"
#include "host/grouping/TogetherChain.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace grouptracker {

namespace {

constexpr double digits = 1e5;  // parts of a weight

EvidenceModel fit(const std::vector<ExamplePart>& parts, double ridge) {
  EvidenceModel model = EvidenceModel::builtIn();
  std::vector<double> weights = fitLogistic(parts, model.weights().size(), ridge);
  for (double& weight : weights) {
    const double whole = std::round(weight * digits);
    weight = whole == 0.0 ? 0.0 : whole / digits;
  }
  model.setWeights(std::move(weights));
  return model;
}

EvidenceModel fitWithout(const LearnedSequences& sequences, std::size_t left, double ridge) {
  std::vector<ExamplePart> parts;
  for (std::size_t i = 0; i < sequences.size(); ++i) {
    if (i != left) {
      parts.push_back({&sequences[i].examples()});
    }
  }
  return fit(parts, ridge);
}

EvidenceModel fitFirstHalves(const LearnedSequences& sequences, double ridge) {
  std::vector<ExamplePart> parts;
  parts.reserve(sequences.size());
  for (const LearnedSequence& sequence : sequences) {
    parts.push_back({&sequence.examples(), sequence.endOfFirstHalf()});
  }
  return fit(parts, ridge);
}

/// Each sequence counts as one.
void addPairs(const LearnedSequence& sequence, const EvidenceModel& model,
              CalibrationCurve& curve) {
  const auto& examples = sequence.examples().examples();
  for (const PairExample& example : examples) {
    double logOdds = 0.0;
    for (const auto& [weight, factor] : sequence.examples().termsOf(example)) {
      logOdds += model.weights()[weight] * factor;
    }
    curve.add(probabilityOf(logOdds), example.isTogether ? 1.0 : 0.0,
              1.0 / static_cast<double>(examples.size()));
  }
}

/// How many of a group's pairs are true, against its confidence; each sequence counts as one.
void addGroups(const LearnedSequence& sequence, const GroupedFrames& groups,
               CalibrationCurve& curve) {
  const GroupedFrames frames = annotated(groups, sequence.truth());
  std::size_t count = 0;
  for (const FrameGroups& frame : frames) {
    count += frame.groups.size();
  }
  for (const FrameGroups& frame : frames) {
    for (const FoundGroup& group : frame.groups) {
      const Counts pairs = pairCounts({group.members,
                                       restrictTo(sequence.truth().at(frame.frame), group.members),
                                       {group.members}});
      curve.add(group.confidence, pairs.scores().precision, 1.0 / static_cast<double>(count));
    }
  }
}

CarryOver describe(const LearnedSequence& sequence) {
  const auto& examples = sequence.examples().examples();
  const auto together = std::count_if(examples.begin(), examples.end(),
                                      [](const PairExample& one) { return one.isTogether; });
  CarryOver carried;
  carried.name = sequence.name();
  carried.pairs = examples.size();
  carried.together = static_cast<double>(together) / static_cast<double>(examples.size());
  return carried;
}

}  // namespace

EvidenceModel learn(const LearnedSequences& sequences, double ridge) {
  EvidenceModel model = fitWithout(sequences, sequences.size(), ridge);
  std::vector<std::string> names;
  for (const LearnedSequence& sequence : sequences) {
    names.push_back(sequence.name());
  }
  model.setLearnedFrom(std::move(names));
  return model;
}

LearningReport examine(const LearnedSequences& sequences, const EvidenceModel& model, double ridge,
                       const std::function<void(const std::string&)>& onProgress) {
  LearningReport report;
  CalibrationCurve pairs;
  CalibrationCurve leftOut;
  CalibrationCurve groupsLeftOut;
  onProgress("learning from the first halves");
  const EvidenceModel ofFirstHalves = fitFirstHalves(sequences, ridge);
  for (std::size_t i = 0; i < sequences.size(); ++i) {
    const LearnedSequence& sequence = sequences[i];
    onProgress("learning without " + sequence.name());
    CarryOver carried = describe(sequence);
    const GroupedFrames groups = sequence.groupsBy(model);
    carried.learnedOnAll = sequence.scoreOf(groups);
    carried.secondHalf = sequence.scoreOf(groups, sequence.middle());
    carried.fromFirstHalves = sequence.scoreOf(sequence.groupsBy(ofFirstHalves), sequence.middle());
    addPairs(sequence, model, pairs);
    if (sequences.size() > 1) {
      const EvidenceModel others = fitWithout(sequences, i, ridge);
      const GroupedFrames found = sequence.groupsBy(others);
      carried.withoutSequence = sequence.scoreOf(found);
      addPairs(sequence, others, leftOut);
      addGroups(sequence, found, groupsLeftOut);
    }
    report.sequences.push_back(carried);
  }
  report.curves = {{"pairs, learned from", pairs}};
  if (sequences.size() > 1) {
    report.curves.push_back({"pairs, left out", leftOut});
    report.curves.push_back({"groups, left out", groupsLeftOut});
  }
  return report;
}

std::string LearningReport::table() const {
  std::string text = fmt::format("{:<20} {:>7} {:>9} {:>9} {:>12} {:>13} {:>9}\n", "F1", "pairs",
                                 "together", "all", "second half", "first halves", "left out");
  CarryOver mean;
  const auto rowOf = [](const CarryOver& one) {
    return fmt::format(" {:9.3f} {:12.3f} {:13.3f} {:9.3f}\n", one.learnedOnAll, one.secondHalf,
                       one.fromFirstHalves, one.withoutSequence);
  };
  for (const CarryOver& one : sequences) {
    text += fmt::format("{:<20} {:>7} {:9.3f}", one.name, one.pairs, one.together) + rowOf(one);
    const auto count = static_cast<double>(sequences.size());
    mean.learnedOnAll += one.learnedOnAll / count;
    mean.secondHalf += one.secondHalf / count;
    mean.fromFirstHalves += one.fromFirstHalves / count;
    mean.withoutSequence += one.withoutSequence / count;
  }
  return text + fmt::format("{:<38}", "mean") + rowOf(mean) + "\n" + tableOf(curves);
}

}  // namespace grouptracker

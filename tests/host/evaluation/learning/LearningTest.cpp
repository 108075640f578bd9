#include "host/evaluation/learning/EvidenceLearning.h"
#include "host/evaluation/learning/LogisticFit.h"
#include "tests/host/grouping/PathScene.h"

#include <gmock/gmock.h>

#include <cmath>
#include <sstream>

namespace grouptracker {

namespace {

using testing::HasSubstr;

/// Pairs that walk through side by side, each with somebody who comes the other way.
PathScene passingPairs(int pairs) {
  PathScene scene;
  for (int i = 0; i < pairs; ++i) {
    const double start = 12.0 * i;
    const auto id = static_cast<PersonId>(3 * i + 1);
    scene.person(id, {{start, -8, 0}, {start + 12, 6, 0.3}});
    scene.person(id + 1, {{start, -8, 0.8}, {start + 12, 6, 1.1}});
    scene.person(id + 2, {{start, 8, 1.6}, {start + 11, -7, 0.5 - 0.1 * i}});
  }
  return scene;
}

GroupTruth truthOf(int pairs) {
  std::vector<PersonGroup> groups;
  for (int i = 0; i < pairs; ++i) {
    const auto id = static_cast<Person>(3 * i + 1);
    groups.push_back({id, id + 1});
  }
  return GroupTruth(joinOverlapping(groups));
}

LearnedSequence sequence(const std::string& name, int pairs = 6) {
  return {name, passingPairs(pairs).at(2.5), truthOf(pairs), 3.2};
}

TEST(LogisticFit, FindsWhereTheSlopeOfWhatIsMaximisedIsZero) {
  const LearnedSequence one = sequence("one");
  const LearnedSequence other = sequence("other", 3);
  const std::size_t weights = EvidenceModel::builtIn().weights().size();
  constexpr double ridge = 30.0;
  const auto fitted = fitLogistic({{&one.examples()}, {&other.examples()}}, weights, ridge);
  std::vector<double> slope(weights);
  for (std::size_t i = 0; i < weights; ++i) {
    slope[i] = (i == 0 ? 1e-3 : ridge) * fitted[i];
  }
  for (const PairExamples* part : {&one.examples(), &other.examples()}) {
    const double counts = 1000.0 / static_cast<double>(part->examples().size());
    for (const PairExample& example : part->examples()) {
      double odds = 0.0;
      for (const auto& [weight, factor] : part->termsOf(example)) {
        odds += fitted[weight] * factor;
      }
      const double miss = 1.0 / (1.0 + std::exp(-odds)) - (example.isTogether ? 1.0 : 0.0);
      for (const auto& [weight, factor] : part->termsOf(example)) {
        slope[weight] += counts * miss * factor;
      }
    }
  }
  for (const double value : slope) {
    EXPECT_NEAR(value, 0.0, 1e-6);
  }
}

TEST(Learning, TellsPairsFromThoseWhoMeetAndWritesTheSameModelTwice) {
  LearnedSequences sequences;
  sequences.push_back(sequence("one"));
  sequences.push_back(sequence("other", 4));
  const EvidenceModel model = learn(sequences, 1.0);
  EXPECT_EQ(model.text(), learn(sequences, 1.0).text());
  EXPECT_THAT(model.text(), HasSubstr(R"("learnedFrom": ["one", "other"])"));
  std::istringstream in(model.text());
  EXPECT_EQ(EvidenceModel::read(in, "model.json").weights(), model.weights()) << "to five digits";
  const LearningReport report = examine(sequences, model, 1.0, [](const std::string&) {});
  ASSERT_EQ(report.sequences.size(), 2U);
  EXPECT_GT(report.sequences[0].withoutSequence, 0.9);
  EXPECT_GT(report.sequences[1].fromFirstHalves, 0.9);
  EXPECT_EQ(report.curves.size(), 3U);
  EXPECT_LT(report.curves[0].curve.error(), 0.1);
  EXPECT_THAT(report.table(), HasSubstr("left out"));
}

TEST(PairExamples, OfALongRecordingAreOfEverySecondMomentOnly) {
  PairExamples examples(EvidenceModel::builtIn());
  GroupTruth truth;
  TickBeliefs tick;
  for (PersonId b = 1; b <= 100; ++b) {
    tick.pairs.push_back({.a = 0, .b = b, .features = std::make_shared<PairFeatures>()});
  }
  for (int i = 0; i < 400; ++i) {
    truth.setAt(i, {{0, 7}});
    tick.time = i;
    examples.add(i, tick, truth);
    examples.add(1000 + i, tick, truth);  // says nothing
  }
  ASSERT_EQ(examples.examples().size(), 400U / 4 * 100);
  EXPECT_EQ(examples.examples()[100].time, 4.0);
  EXPECT_TRUE(examples.examples()[106].isTogether);
  EXPECT_FALSE(examples.examples()[107].isTogether);
  double intercept = 0.0;
  for (const auto& [weight, factor] : examples.termsOf(examples.examples().back())) {
    intercept += weight == 0 ? factor : 0.0;
  }
  EXPECT_EQ(intercept, 1.0);
}

TEST(Calibration, IsTheMeanDifferenceBetweenToldAndTrue) {
  CalibrationCurve curve;
  curve.add(0.75, 1.0, 1.0);
  curve.add(0.75, 0.0, 1.0);
  curve.add(1.0, 1.0, 2.0);
  EXPECT_DOUBLE_EQ(curve.error(), 0.125);
  const std::string table = tableOf({{"mine", curve}});
  EXPECT_THAT(table, HasSubstr("0.7 to 0.8          50.0% told 0.75 true 0.50"));
  const std::string picture = pictureOf({{"mine", curve}, {"other", curve}});
  EXPECT_THAT(picture, testing::StartsWith("<svg "));
  EXPECT_THAT(picture, HasSubstr("mine, error 0.125"));
}

}  // namespace

}  // namespace grouptracker

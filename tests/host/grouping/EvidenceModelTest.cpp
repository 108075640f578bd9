#include "host/grouping/EvidenceModel.h"
#include "tests/support/base/Texts.h"

#include <gtest/gtest.h>

#include <sstream>

namespace grouptracker {

namespace {

EvidenceModel modelOf(const std::string& text) {
  std::istringstream in(text);
  return EvidenceModel::read(in, "model.json");
}

TEST(EvidenceModel, TextReadsAsTheSameModel) {
  const EvidenceModel model = EvidenceModel::builtIn();
  const EvidenceModel copy = modelOf(model.text());
  EXPECT_EQ(copy.weights(), model.weights());
  EXPECT_EQ(copy.learnedFrom(), model.learnedFrom());
  EXPECT_EQ(copy.text(), model.text());
  EXPECT_FALSE(model.learnedFrom().empty());
}

/// All weights are 0 but those that the test sets.
class Weights : public testing::Test {
 protected:
  Weights() : model(EvidenceModel::builtIn()), weights(model.weights().size(), 0.0) {}

  double logOdds() {
    model.setWeights(weights);
    return model.logOdds(features);
  }

  EvidenceModel model;
  std::vector<double> weights;
  PairFeatures features;
};

TEST_F(Weights, CurvesAreLinearBetweenKnotsAndConstantOutside) {
  // Behind six flags come the knots of the mean distance: 0.4, 0.7, 1 and so on.
  weights[6] = 1.0;
  weights[7] = 3.0;
  for (const auto& [distance, expected] :
       {std::pair(0.1, 1.0), {0.4, 1.0}, {0.55, 2.0}, {0.7, 3.0}, {0.85, 1.5}, {9.0, 0.0}}) {
    features.meanDistance = distance;
    EXPECT_NEAR(logOdds(), expected, 1e-12) << distance;
  }
}

TEST_F(Weights, WhatNeedsArrivalsIsSilentWhenTheyWereNotSeen) {
  weights.assign(weights.size(), 1.0);
  std::fill(weights.begin(), weights.begin() + 6, 0.0);
  const double seen = logOdds();
  features.start = 1.0;
  // Two curves, of the gap between arrivals and of the first distance; the latter has one of its
  // own for this case.
  EXPECT_DOUBLE_EQ(logOdds(), seen - 2.0 + 1.0);
}

struct WrongModel {
  const char* name;
  const char* replaced;  ///< the first of it in the text of the built-in model
  const char* by;
  const char* error;
};

class ModelError : public testing::TestWithParam<WrongModel> {};

TEST_P(ModelError, IsOneLineWithThePlace) {
  std::string text = EvidenceModel::builtIn().text();
  const std::string replaced = GetParam().replaced;
  const std::size_t at = text.find(replaced);
  ASSERT_NE(at, std::string::npos);
  text.replace(at, replaced.size(), GetParam().by);
  EXPECT_EQ(errorOf([&] { modelOf(text); }), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Each, ModelError,
    testing::Values(
        WrongModel{"NotJson", "\"features\": {", "\"features\": ", "model.json:5: not valid JSON"},
        WrongModel{"NoFlag", "\"intercept\"", "\"other\"",
                   "model.json:3: \"flags\" lacks \"intercept\""},
        WrongModel{"FlagIsText", "\"standing\": -0", "\"standing\": \"a\", \"b\": -0",
                   "model.json:3: \"flags.standing\" must be a number"},
        WrongModel{"NoFeature", "\"shift\"", "\"shaft\"",
                   "model.json:4: \"features\" lacks \"shift\""},
        WrongModel{"UnknownFeature", "\"features\": {", "\"features\": {\n\"age\": {},",
                   "model.json:5: \"features.age\" is no known feature"},
        WrongModel{"NoKnots", "\"knots\"", "\"knuts\"",
                   "model.json:5: \"features.meanDistance\" lacks \"knots\""},
        WrongModel{"OneKnot", "[0.4, 0.7, 1, 1.4, 2, 3, 5]", "[1]",
                   "model.json:6: \"features.meanDistance.knots\" needs two knots at least"},
        WrongModel{"KnotsFall", "[0.4, 0.7,", "[0.4, 0.3,",
                   "model.json:6: \"features.meanDistance.knots\" must be ascending"},
        WrongModel{"WeightIsNull", "\"always\": [", "\"always\": [null, ",
                   "model.json:7: \"features.meanDistance.always\" must be an array of numbers"},
        WrongModel{"WeightIsMissing", "\"always\": [", "\"always\": [0.5], \"never\": [",
                   "model.json:7: \"features.meanDistance.always\" needs one weight for each of "
                   "the 7 knots, not 1"},
        WrongModel{"WeightDoesNotFit", "\"always\": [", "\"always\": [-1e999, ",
                   "model.json:7: not valid JSON: a number that does not fit"}),
    [](const auto& row) { return row.param.name; });

TEST(EvidenceModel, FilesThatAreNoModelAreRefused) {
  EXPECT_EQ(errorOf([] { modelOf("[]"); }), "model.json:1: the model must be an object");
  EXPECT_EQ(errorOf([] { modelOf(""); }), "model.json:1: not valid JSON");
  EXPECT_EQ(errorOf([] { EvidenceModel::read("/nowhere/model.json"); }),
            "/nowhere/model.json: cannot be opened: No such file or directory");
}

}  // namespace

}  // namespace grouptracker

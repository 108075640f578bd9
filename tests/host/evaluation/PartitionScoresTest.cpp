#include "host/evaluation/PartitionScores.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace grouptracker {

namespace {

/// Scores that can be worked out on paper.
struct Worked {
  const char* name;
  PartitionPair partitions;
  double mitrePrecision;
  double mitreRecall;
  double pairPrecision;
  double pairRecall;
  double adjustedRand;

  friend std::ostream& operator<<(std::ostream& out, const Worked& row) { return out << row.name; }
};

class PartitionScores : public testing::TestWithParam<Worked> {};

TEST_P(PartitionScores, AreWhatPaperSays) {
  const Worked& row = GetParam();
  const PrecisionRecall mitre = groupMitre(row.partitions);
  const PrecisionRecall pairs = pairCounts(row.partitions).scores();
  EXPECT_DOUBLE_EQ(mitre.precision, row.mitrePrecision);
  EXPECT_DOUBLE_EQ(mitre.recall, row.mitreRecall);
  EXPECT_DOUBLE_EQ(pairs.precision, row.pairPrecision);
  EXPECT_DOUBLE_EQ(pairs.recall, row.pairRecall);
  EXPECT_NEAR(adjustedRandIndex(row.partitions), row.adjustedRand, 1e-12);
}

const std::vector<Person> three{1, 2, 3};
const std::vector<Person> five{1, 2, 3, 4, 5};

INSTANTIATE_TEST_SUITE_P(
    ByHand, PartitionScores,
    testing::Values(
        Worked{"equal", {three, {{1, 2}}, {{1, 2}}}, 1, 1, 1, 1, 1},
        // Links found: one for each of three persons alone; only the third's is true.
        Worked{"all_found_alone", {three, {{1, 2}}, {}}, 1.0 / 3, 1.0 / 2, 1, 0, 0},
        // Two links hold the three together, one of them too many; the third is not alone.
        Worked{
            "all_found_together", {three, {{1, 2}}, {{1, 2, 3}}}, 1.0 / 2, 1.0 / 2, 1.0 / 3, 1, 0},
        // 3 true links and 3 found ones, 2 in common; 4 pairs and 4 pairs, 2 in common; of 10 pairs
        // chance has 1.6 in common.
        Worked{"one_person_moved",
               {five, {{1, 2, 3}, {4, 5}}, {{1, 2}, {3, 4, 5}}},
               2.0 / 3,
               2.0 / 3,
               1.0 / 2,
               1.0 / 2,
               0.4 / 2.4},
        Worked{"everybody_is_alone_and_is_found_so", {five, {}, {}}, 1, 1, 1, 1, 1}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(GroupMitre, IsZeroWhenNothingIsRight) {
  EXPECT_EQ(groupMitre({{1, 2}, {{1, 2}}, {}}).f1, 0.0);
  EXPECT_EQ(groupMitre({{1, 2}, {}, {{1, 2}}}).f1, 0.0);
}

TEST(CorrectGroups, NeedTheWantedPartOfTheLargerGroup) {
  const PartitionPair moved{five, {{1, 2, 3}, {4, 5}}, {{1, 2}, {3, 4, 5}}};
  EXPECT_EQ(correctGroups(moved, 1.0).matched, 0);
  EXPECT_EQ(correctGroups(moved, 2.0 / 3.0).matched, 2);
  EXPECT_EQ(correctGroups(moved, 2.0 / 3.0).scores().f1, 1.0);
}

TEST(CorrectGroups, ServeOneTrueGroupEach) {
  const PartitionPair halves{{1, 2, 3, 4}, {{1, 2}, {3, 4}}, {{1, 2, 3, 4}}};
  EXPECT_EQ(correctGroups(halves, 0.5).matched, 1);
}

// The worst match alone would use up what both good ones need.
TEST(CorrectGroups, AreMatchedFromTheLargestOverlapOn) {
  const PartitionPair moved{{1, 2, 3, 4, 5, 6}, {{1, 2, 3}, {4, 5, 6}}, {{1, 2, 3, 4}, {5, 6}}};
  EXPECT_EQ(correctGroups(moved, 0.25).matched, 2);
}

TEST(Grouping, ListsThatShareAPersonAreOneGroup) {
  EXPECT_EQ(joinOverlapping({{4, 5}, {1, 2, 2}, {7}, {5, 6}, {9, 9}, {6, 4}}),
            (Grouping{{1, 2}, {4, 5, 6}}));
}

}  // namespace

}  // namespace grouptracker

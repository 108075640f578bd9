#include "host/grouping/Partition.h"
#include "host/grouping/TogetherChain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace grouptracker {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

PairScores scoresOf(std::size_t persons,
                    const std::vector<std::tuple<std::size_t, std::size_t, double>>& pairs) {
  PairScores scores(persons, -4.0);
  for (const auto& [a, b, score] : pairs) {
    scores.set(a, b, score);
  }
  return scores;
}

TEST(LinkByAverage, OneCommonNeighbourDoesNotChainStrangers) {
  //  0 --3-- 1 --2-- 2
  EXPECT_THAT(linkByAverage(scoresOf(3, {{0, 1, 3.0}, {1, 2, 2.0}})),
              ElementsAre(ElementsAre(0, 1)));
}

TEST(LinkByAverage, FourWhoAgreeOnTheWholeAreOneThoughOnePairDoubts) {
  EXPECT_THAT(
      linkByAverage(scoresOf(4, {{0, 1, 3.0}, {2, 3, 3.0}, {0, 2, 2.0}, {1, 3, 2.0}, {1, 2, 2.0}})),
      ElementsAre(ElementsAre(0, 1, 2, 3)));
}

TEST(LinkByAverage, AmongEqualsTheFirstInOrderCountsAndNobodyIsJoinedAtZero) {
  EXPECT_THAT(linkByAverage(scoresOf(4, {{0, 3, 1.0}, {1, 3, 1.0}, {1, 2, 0.0}})),
              ElementsAre(ElementsAre(0, 3)));
  EXPECT_THAT(linkByAverage(scoresOf(2, {{0, 1, 0.0}})), IsEmpty());
}

TEST(LinkByAverage, PeopleWhomNothingConnectsDoNotMatterToEachOther) {
  //  0 --2-- 3 --1-- 5    1 --3-- 2 --2-- 4, 1 --2-- 4    6
  EXPECT_THAT(
      linkByAverage(scoresOf(
          7, {{0, 3, 2.0}, {3, 5, 1.0}, {1, 2, 3.0}, {2, 4, 2.0}, {1, 4, 2.0}, {6, 0, 0.0}})),
      ElementsAre(ElementsAre(0, 3), ElementsAre(1, 2, 4)));
}

TEST(TogetherChain, BeliefOutlastsAMomentOfDoubtButNotSeconds) {
  TogetherChain chain;
  double belief = 0.0;
  for (int i = 0; i < 25; ++i) {
    belief = chain.next(0.4 * i, 2.0, true);
  }
  EXPECT_GT(chain.next(10.0, -2.0, true), 0.0);
  for (int i = 1; i <= 10; ++i) {
    belief = chain.next(10.0 + 0.4 * i, -2.0, true);
  }
  EXPECT_LT(belief, 0.0);
}

TEST(TogetherChain, CountsSecondsAndNotCalls) {
  TogetherChain slow;
  TogetherChain quick;
  double seldom = 0.0;
  double often = 0.0;
  for (int i = 0; i <= 40; ++i) {
    often = quick.next(0.1 * i, 0.4, false);
    seldom = i % 4 == 0 ? slow.next(0.1 * i, 0.4, false) : seldom;
  }
  EXPECT_NEAR(often, seldom, 0.2);
}

TEST(TogetherChain, SureOfNothingAfterALongPause) {
  TogetherChain chain;
  chain.next(0.0, 5.0, true);
  EXPECT_NEAR(probabilityOf(chain.next(1000.0, 0.0, true)), 2.0 / 3.0, 1e-6);
}

}  // namespace

}  // namespace grouptracker

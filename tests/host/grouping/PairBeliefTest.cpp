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

/// Chains that are watched together.
class Chains : public testing::Test {
 protected:
  double next(TogetherChain& chain, double time, double evidence, bool isFresh) {
    return chain.next(time, evidence, isFresh, m_latest);
  }

 private:
  TogetherChain::Passage m_latest;
};

TEST_F(Chains, BeliefOutlastsAMomentOfDoubtButNotSeconds) {
  TogetherChain chain;
  double belief = 0.0;
  for (int i = 0; i < 25; ++i) {
    belief = next(chain, 0.4 * i, 2.0, true);
  }
  EXPECT_GT(next(chain, 10.0, -2.0, true), 0.0);
  for (int i = 1; i <= 10; ++i) {
    belief = next(chain, 10.0 + 0.4 * i, -2.0, true);
  }
  EXPECT_LT(belief, 0.0);
}

TEST_F(Chains, CountsSecondsAndNotCalls) {
  TogetherChain slow;
  TogetherChain quick;
  double seldom = 0.0;
  double often = 0.0;
  for (int i = 0; i <= 40; ++i) {
    often = next(quick, 0.1 * i, 0.4, false);
    seldom = i % 4 == 0 ? next(slow, 0.1 * i, 0.4, false) : seldom;
  }
  EXPECT_NEAR(often, seldom, 0.2);
}

TEST_F(Chains, SureOfNothingAfterALongPause) {
  TogetherChain chain;
  next(chain, 0.0, 5.0, true);
  EXPECT_NEAR(probabilityOf(next(chain, 1000.0, 0.0, true)), 2.0 / 3.0, 1e-6);
}

TEST_F(Chains, GiveTheSameInCompanyAsAlone) {
  std::vector<TogetherChain> company(20);
  std::vector<TogetherChain> alone(20);
  for (int tick = 0; tick < 60; ++tick) {
    const double time = tick < 40 ? 0.3 * tick : 0.4 * tick;
    for (std::size_t i = 0; i < company.size(); ++i) {
      const double evidence = i < 15 ? -5.0 : 0.3 * static_cast<double>(i) - 5.0;
      TogetherChain::Passage own;
      EXPECT_EQ(next(company[i], time, evidence, i % 2 == 0),
                alone[i].next(time, evidence, i % 2 == 0, own));
    }
  }
}

}  // namespace

}  // namespace grouptracker

#include "host/evaluation/search/TuningSearch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace grouptracker {

namespace {

TuningSpace twoValues() {
  std::istringstream in(
      "distWeight: 0 10 linear\n# a remark\n--neighbour-radius 1 100 logarithmic\n");
  return TuningSpace::read(in, "space.txt");
}

/// Two sequences whose scores peak at (3, 10), with a narrow higher peak beside it that only the
/// first one has.
void score(Trial& trial) {
  const double x = (trial.candidate[0] - 3.0) / 10.0;
  const double y = std::log10(trial.candidate[1]) - 1.0;
  const double luck = std::abs(trial.candidate[0] - 4.5) < 0.1 ? 0.3 : 0.0;
  trial.scores = {1.0 - x * x - y * y + luck, 0.9 - std::abs(x)};
}

std::vector<std::string> trialsOf(const TuningSpace& space, bool backwards) {
  std::vector<std::string> rows;
  TuningSearch search(space, {120, 7, 0.2});
  search.run([&](std::vector<Trial>& trials) {
    for (std::size_t i = 0; i < trials.size(); ++i) {
      score(trials[backwards ? trials.size() - 1 - i : i]);
    }
    for (const Trial& trial : trials) {
      rows.push_back(std::to_string(trial.candidate[0]) + " " + std::to_string(trial.candidate[1]));
    }
  });
  return rows;
}

TEST(TuningSearch, MakesTheSameTrialsInWhateverOrderTheyFinish) {
  const TuningSpace space = twoValues();
  const auto rows = trialsOf(space, false);
  EXPECT_EQ(rows.size(), 120U);
  EXPECT_EQ(rows, trialsOf(space, true));
}

TEST(TuningSearch, AnswersWithTheMiddleOfTheGoodRegionAndPassesOverTrialsThatDie) {
  const TuningSpace space = twoValues();
  TuningSearch search(space, {240, 1, 0.2});
  const SearchResult result = search.run([](std::vector<Trial>& trials) {
    for (Trial& trial : trials) {
      score(trial);
      if (trial.candidate[0] < 2.5) {
        trial.scores[1].reset();
      }
    }
  });
  EXPECT_NEAR(result.middle.candidate[0], 3.1, 0.5);
  EXPECT_NEAR(std::log10(result.middle.candidate[1]), 1.0, 0.1);
  EXPECT_NEAR(result.best.candidate[0], 4.5, 0.1);
}

TEST(TuningSearch, FindsNothingWhenEverythingDies) {
  const TuningSpace space = twoValues();
  TuningSearch search(space, {40, 1, 0.2});
  const SearchResult result = search.run([](std::vector<Trial>& trials) {
    for (Trial& trial : trials) {
      trial.scores = {0.5, std::nullopt};
    }
  });
  EXPECT_TRUE(result.middle.scores.empty());
  EXPECT_TRUE(result.best.scores.empty());
}

TEST(TuningSpace, NamesTheWrongLine) {
  for (const char* wrong : {"a: 1 2 cubic", "a: 2 1 whole", "a: 0 1 logarithmic", "a: 1 whole"}) {
    std::istringstream in(std::string("b: 1 2 whole\n") + wrong);
    try {
      TuningSpace::read(in, "space.txt");
      ADD_FAILURE() << wrong;
    } catch (const std::exception& error) {
      EXPECT_EQ(std::string(error.what()).rfind("space.txt:2: ", 0), 0U) << error.what();
    }
  }
}

TEST(TuningSpace, KeepsNumbersInTheirRangeShortAndWhole) {
  const TunedValue whole{"w", 1, 4, TunedValue::Scale::whole};
  const TunedValue steep{"s", 0.01, 100, TunedValue::Scale::logarithmic};
  EXPECT_EQ(TuningSpace::atPlace(whole, 0.55), 3.0);
  EXPECT_EQ(TuningSpace::atPlace(whole, 7.0), 4.0);
  EXPECT_EQ(TuningSpace::atPlace(steep, 0.5), 1.0);
  EXPECT_EQ(TuningSpace::atPlace(steep, 1.0 / 3.0), 0.215);
  EXPECT_EQ(TuningSpace::atPlace(steep, TuningSpace::placeOf(steep, 0.215)), 0.215);
}

}  // namespace

}  // namespace grouptracker

#include "host/base/Suggestion.h"

#include <gtest/gtest.h>

namespace grouptracker {

namespace {

TEST(Suggestion, IsTheNearestWordWhenItIsNearEnough) {
  const std::vector<std::string> known{"run", "report", "evaluate", "events", "--parameters"};
  EXPECT_EQ(suggestionFor("evalute", known), "evaluate");  // too few
  EXPECT_EQ(suggestionFor("eventts", known), "events");    // too many
  EXPECT_EQ(suggestionFor("repost", known), "report");     // wrong
  EXPECT_EQ(suggestionFor("rnu", known), "run");           // exchanged
  EXPECT_EQ(suggestionFor("--paramterrs", known), "--parameters");
  EXPECT_EQ(suggestionFor("rx", known), std::nullopt);
  EXPECT_EQ(suggestionFor("wonderful", known), std::nullopt);
  EXPECT_EQ(suggestionFor("", known), std::nullopt);
  EXPECT_EQ(suggestionFor(std::string(100000, 'r'), known), std::nullopt);
  EXPECT_EQ(suggestionFor("run", {}), std::nullopt);
  EXPECT_EQ(didYouMean("rum", known), "; did you mean run?");
  EXPECT_EQ(didYouMean("walk", known), "");
}

}  // namespace

}  // namespace grouptracker

#include "tests/support/base/Texts.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace grouptracker {

namespace {

using testing::HasSubstr;

TEST(SimulateCommand, MakesASceneThatRunsWithItsCameraAndContext) {
  const TempFolder folder;
  Program simulate(folder.path());
  EXPECT_EQ(simulate.run({"simulate", "--frames", "40", "--people", "12", "--output", "scene"}), 0)
      << simulate.errors();
  EXPECT_THAT(simulate.errors(), HasSubstr("40 frames, "));

  Program run(folder.path());
  EXPECT_EQ(run.run({"run", "scene/scene.jsonl", "--parameters", GROUPTRACKER_SAMPLE_PARAMETERS,
                     "--calibration", "scene/calibration.yml", "--context", "scene/context.json",
                     "--output", "groups.jsonl", "--diagnostics", "none", "--mobile-dump", "none"}),
            0)
      << run.errors();
  const std::string groups = textOf(folder.path() / "groups.jsonl");
  EXPECT_EQ(std::count(groups.begin(), groups.end(), '\n'), 40);
}

TEST(SimulateCommand, RefusesMorePeopleInGroupsThanThereAre) {
  const TempFolder folder;
  Program simulate(folder.path());
  EXPECT_EQ(simulate.run({"simulate", "--people", "4", "--groups", "2,3", "--output", "scene"}), 2);
  EXPECT_EQ(simulate.errors(), "--groups: 5 people are in groups, but --people is 4\n");
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "scene"));
}

TEST(SimulateCommand, RefusesNumbersThatMakeNoScene) {
  const TempFolder folder;
  const std::vector<std::pair<QStringList, std::string>> cases{
      {{"--rate", "nan"}, "--rate: nan is not a finite number"},
      {{"--seconds", "inf"}, "--seconds: inf is not a finite number"},
      {{"--noise", "-1"}, "--noise: -1 is not a number from 0 to 100"},
      {{"--joins", "2000000000"}, "--joins: 2000000000 is not a number from 0 to 10000"},
      {{"--seed", "18446744073709551616"},
       "--seed: 18446744073709551616 is not from 0 to 18446744073709551615"},
      {{"--circles", "2,99"}, "--circles: 99 is not a number from 2 to 12"},
      {{"--people", "100000", "--waiting", "1"},
       "--people: 100001 people in all are more than 100000"},
      {{"--seconds", "1e6", "--rate", "1000"}, "--seconds: gives more than 100000000 frames"},
      {{"--seconds", "9", "--frames", "9"},
       "--seconds: is there in place of --frames, so only one of them can be given"}};
  for (const auto& [options, message] : cases) {
    Program simulate(folder.path());
    EXPECT_EQ(simulate.run(QStringList{"simulate", "--output", "scene"} + options), 2) << message;
    EXPECT_THAT(simulate.errors(), testing::StartsWith(message));
  }
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "scene"));
}

}  // namespace

}  // namespace grouptracker

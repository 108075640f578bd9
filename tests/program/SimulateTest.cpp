#include "tests/support/base/TempFolder.h"
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

}  // namespace

}  // namespace grouptracker

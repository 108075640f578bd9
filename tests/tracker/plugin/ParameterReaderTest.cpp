#include "tests/support/process/StaticsGuard.h"
#include "tracker/display/GroupExtension.h"
#include "tracker/geometry/Util.h"
#include "tracker/plugin/GroupTrackerProcessGroupTracker.h"
#include "tracker/plugin/GroupTrackerProcessGroupTrackerPrivate.h"
#include "tracker/plugin/ParameterReader.h"
#include "tracker/plugin/SuddenDetect.h"
#include "tracker/tracking/Group.h"
#include "tracker/tracking/GroupTracker.h"
#include "tracker/tracking/MetaLPO.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <tuple>
#include <unistd.h>

namespace {

const std::string file = R"(coherenceThreshold: 1.5
distWeight: 2 speedSimWeight: 3
dirSimWeight: 4

distanceThreshold: 5e0 speedSimThreshold: 6 dirSimThreshold: 7 reliabilityThreshold: 8
temporalWinSize: 9 temporalWinForRemoval: 10 recentLinkWeight: 11 maxDistGroupCreation: 12
maxDistGroupMerge: 13 maxDistGroupUpdate: 14 imagesFolder: 15/ fileFormat: .16 firstImage: -17
saveOutput: 1 outputFolder: 19/ extDisplayOn: 0 openCVOutput: 1 useClustering: 1 tolerance: 23
sonDistanceWeight: 24 fatherDistanceWeight: 25 minReliabilityBest: 26 minReliabilityOthers: 27
minCrowdWidth: 28 minCrowdHeight: 29 histogramDepth: 30 mvtAreaTh: 31 mvtSpeedTh: 32
mvtSpeedNFrames: 33 mvtFrameGap: 34 mvtBrightnessTh: 35 mvtBlobsFilter: 36 personWidth: 37
personDepth: 38 personHeight: 39 positionNormalization: 0 detectSuddenMvt: 1 trajectoryLength: 42
samplingStride: 43.5 samplingStrideDetection: 44 gaussianGridFile: 45.txt alpha: 46 minNumCells: 47
)";

std::string with(const std::string& part, const std::string& replacement) {
  std::string text = file;
  return text.replace(text.find(part), part.size(), replacement);
}

void read(const std::string& text) {
  std::istringstream stream(text);
  readParameters(static_cast<std::istream&>(stream));
}

class Parameters : public testing::Test {
  StaticsGuard guard;
};
using ParametersDeathTest = Parameters;

TEST_F(Parameters, FillEachItsMember) {
  using Process = GroupTrackerProcessGroupTrackerPrivate;
  const auto expectAll = [] {
    EXPECT_EQ(std::tie(Group::coherenceThreshold, Group::distWeight, Group::speedSimWeight,
                       Group::dirSimWeight, Group::distanceThreshold, Group::speedSimThreshold,
                       Group::dirSimThreshold, GroupTracker::reliabilityThreshold,
                       Util::temporalWinSize, GroupTracker::maxFrames, MetaLPO::recentLinkWeight),
              std::tuple(1.5, 2U, 3U, 4U, 5.0, 6.0, 7.0, 8.0, 9U, 10U, 11.0));
    EXPECT_EQ(
        std::tie(GroupTracker::maxDistGroupCreation, GroupTracker::maxDistGroupMerge,
                 GroupTracker::maxDistGroupUpdate, GroupExtension::imagesFolder,
                 GroupExtension::fileFormat, GroupExtension::firstImage, GroupExtension::saveOutput,
                 GroupExtension::outputFolder, GroupExtension::extDisplayOn,
                 GroupExtension::openCVOutput, Process::useClustering),
        std::tuple(12.0, 13.0, 14.0, "15/", ".16", -17, true, "19/", false, true, true));
    EXPECT_EQ(std::tie(GroupTracker::tolerance, GroupTracker::sonDistanceWeight,
                       GroupTracker::fatherDistanceWeight, GroupTracker::minReliabilityBest,
                       GroupTracker::minReliabilityOthers, Process::minCrowdWidth,
                       Process::minCrowdHeight, Process::histogramDepth, Process::mvtAreaTh,
                       Process::mvtSpeedTh, Process::mvtSpeedNFrames, Process::mvtFrameGap),
              std::tuple(23.0, 24.0, 25.0, 26.0, 27.0, 28.0, 29.0, 30, 31.0, 32.0, 33, 34));
    EXPECT_EQ(std::tie(Process::mvtBrightnessTh, Process::mvtBlobsFilter, Util::personWidth,
                       Util::personDepth, Util::personHeight, Process::positionNormalization,
                       Process::detectSuddenMvt, SuddenDetect::track_length,
                       SuddenDetect::min_distance, SuddenDetect::gridSize,
                       SuddenDetect::gaussianGrid, SuddenDetect::alpha, Process::minNumCells),
              std::tuple(35, 36, 37.0, 38.0, 39.0, false, true, 42, 43.5, 44, "45.txt", 46.0, 47));
  };
  read(file);
  expectAll();

  const StaticsGuard again;
  for (const auto& parameter : parameterTable()) {
    std::visit([](auto* member) { *member = {}; }, parameter.member);
  }
  std::string oneLine = file + "and more that nobody reads";
  std::replace(oneLine.begin(), oneLine.end(), '\n', '\t');
  read(oneLine);
  expectAll();
}

TEST_F(Parameters, ANegativeFrameCountWrapsAround) {
  read(with("WinSize: 9", "WinSize: -1"));
  EXPECT_EQ(Util::temporalWinSize, 0xFFFFFFFFU);
  EXPECT_EQ(GroupTracker::maxFrames, 10U);
}

TEST_F(ParametersDeathTest, AMistakeEndsTheProgramWithItsMessage) {
  const auto expectEnd = [](const std::string& text, const std::string& message) {
    const auto readToStandardError = [&] {
      dup2(STDERR_FILENO, STDOUT_FILENO);
      read(text);
    };
    EXPECT_EXIT(readToStandardError(), testing::ExitedWithCode(1),
                testing::Eq("\nError reading parameter: " + message));
  };
  expectEnd(with("distWeight:", "distweight:"), "distweight: : distWeight:\nstr size: 11");
  expectEnd(with("tolerance:", "tolerance :"), "tolerance : tolerance:\nstr size: 9");
  expectEnd(with("imagesFolder: 15/", "imagesFolder: my 15/"), "15/ : fileFormat:\nstr size: 3");
  expectEnd(with("useClustering: 1", "useClustering: true"), " : tolerance:\nstr size: 0");
  expectEnd(file.substr(0, file.find("minNumCells:")), " : minNumCells:\nstr size: 0");
}

TEST_F(ParametersDeathTest, AMissingFileEndsTheProgramAtTheFirstLabelEvenWithoutDiagnostics) {
  GroupTrackerProcessGroupTracker process;
  process.setParameterFileName("no/such/file");
  const auto init = [&](bool diagnostics) {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    process.setSpecificParameters({{"diagnostics", diagnostics}});
    process.init();
  };
  const std::string message = "\nError reading parameter:  : coherenceThreshold:\nstr size: 0";
  EXPECT_EXIT(init(true), testing::ExitedWithCode(1),
              testing::Eq("parameter file name: no/such/file\n" + message));
  EXPECT_EXIT(init(false), testing::ExitedWithCode(1), testing::Eq(message));
}

}  // namespace

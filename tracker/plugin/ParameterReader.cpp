#include "tracker/plugin/ParameterReader.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupExtension.h"
#include "tracker/geometry/Util.h"
#include "tracker/plugin/GroupTrackerProcessGroupTrackerPrivate.h"
#include "tracker/plugin/SuddenDetect.h"
#include "tracker/tracking/Group.h"
#include "tracker/tracking/GroupTracker.h"
#include "tracker/tracking/MetaLPO.h"

#include <cstdlib>
#include <fstream>
#include <istream>

namespace {

using Process = GroupTrackerProcessGroupTrackerPrivate;

}  // namespace

const std::array<Parameter, parameterCount>& parameterTable() {
  // The entries that nothing reads keep their place, because files have always had them.
  static const std::array<Parameter, parameterCount> table{{
      {"coherenceThreshold:", &Group::coherenceThreshold},
      {"distWeight:", &Group::distWeight},
      {"speedSimWeight:", &Group::speedSimWeight},
      {"dirSimWeight:", &Group::dirSimWeight},
      {"distanceThreshold:", &Group::distanceThreshold},
      {"speedSimThreshold:", &Group::speedSimThreshold},
      {"dirSimThreshold:", &Group::dirSimThreshold},
      {"reliabilityThreshold:", &GroupTracker::reliabilityThreshold},
      {"temporalWinSize:", &Util::temporalWinSize},          // frames of delay before a decision
      {"temporalWinForRemoval:", &GroupTracker::maxFrames},  // frames a node is remembered
      {"recentLinkWeight:", &MetaLPO::recentLinkWeight},
      {"maxDistGroupCreation:", &GroupTracker::maxDistGroupCreation},
      {"maxDistGroupMerge:", &GroupTracker::maxDistGroupMerge},
      {"maxDistGroupUpdate:", &GroupTracker::maxDistGroupUpdate},
      {"imagesFolder:", &GroupExtension::imagesFolder},
      {"fileFormat:", &GroupExtension::fileFormat},
      {"firstImage:", &GroupExtension::firstImage},
      {"saveOutput:", &GroupExtension::saveOutput},
      {"outputFolder:", &GroupExtension::outputFolder},
      {"extDisplayOn:", &GroupExtension::extDisplayOn},
      {"openCVOutput:", &GroupExtension::openCVOutput},
      {"useClustering:", &Process::useClustering},
      {"tolerance:", &GroupTracker::tolerance},  // bandwidth of the mean shift
      {"sonDistanceWeight:", &GroupTracker::sonDistanceWeight},
      {"fatherDistanceWeight:", &GroupTracker::fatherDistanceWeight},
      {"minReliabilityBest:", &GroupTracker::minReliabilityBest},
      {"minReliabilityOthers:", &GroupTracker::minReliabilityOthers},
      {"minCrowdWidth:", &Process::minCrowdWidth},
      {"minCrowdHeight:", &Process::minCrowdHeight},
      {"histogramDepth:", &Process::histogramDepth},
      {"mvtAreaTh:", &Process::mvtAreaTh},
      {"mvtSpeedTh:", &Process::mvtSpeedTh},
      {"mvtSpeedNFrames:", &Process::mvtSpeedNFrames},
      {"mvtFrameGap:", &Process::mvtFrameGap},
      {"mvtBrightnessTh:", &Process::mvtBrightnessTh},
      {"mvtBlobsFilter:", &Process::mvtBlobsFilter},
      {"personWidth:", &Util::personWidth},
      {"personDepth:", &Util::personDepth},
      {"personHeight:", &Util::personHeight},
      {"positionNormalization:", &Process::positionNormalization},
      {"detectSuddenMvt:", &Process::detectSuddenMvt},
      {"trajectoryLength:", &SuddenDetect::track_length},     // what is tracked are trajectories
      {"samplingStride:", &SuddenDetect::min_distance},       // the stride keeps points apart
      {"samplingStrideDetection:", &SuddenDetect::gridSize},  // new points lie on a grid
      {"gaussianGridFile:", &SuddenDetect::gaussianGrid},
      {"alpha:", &SuddenDetect::alpha},
      {"minNumCells:", &Process::minNumCells},
  }};
  return table;
}

template <typename Stream>
void ReadLabel(Stream& in, const char* expected) {
  std::string label;
  in >> label;
  if (label == expected) {
    return;
  }
  Diagnostics::printAlways("\nError reading parameter: {} : {}\nstr size: {}", label, expected,
                           label.size());
  Diagnostics::flush();
  std::exit(1);
}

template <typename Stream>
void readParameters(Stream& in) {
  for (const auto& [label, member] : parameterTable()) {
    ReadLabel(in, label);
    std::visit([&](auto* value) { in >> *value; }, member);
  }
}

template void ReadLabel(std::ifstream& in, const char* expected);
template void ReadLabel(std::istream& in, const char* expected);
template void readParameters(std::ifstream& in);
template void readParameters(std::istream& in);

#include "SampleParameters.h"

#include <array>
#include <utility>

namespace {

const std::array<std::pair<const char*, const char*>, 47> pairs{{
    {"coherenceThreshold:", "4"},
    {"distWeight:", "1"},
    {"speedSimWeight:", "1"},
    {"dirSimWeight:", "1"},
    {"distanceThreshold:", "1"},
    {"speedSimThreshold:", "1"},
    {"dirSimThreshold:", "1"},
    {"reliabilityThreshold:", "0.3"},
    {"temporalWinSize:", "2"},
    {"temporalWinForRemoval:", "8"},
    {"recentLinkWeight:", "0.5"},
    {"maxDistGroupCreation:", "2"},
    {"maxDistGroupMerge:", "2"},
    {"maxDistGroupUpdate:", "2"},
    {"imagesFolder:", "images/"},
    {"fileFormat:", ".png"},
    {"firstImage:", "1"},
    {"saveOutput:", "0"},
    {"outputFolder:", "./"},
    {"extDisplayOn:", "0"},
    {"openCVOutput:", "0"},
    {"useClustering:", "0"},
    {"tolerance:", "1"},
    {"sonDistanceWeight:", "10"},
    {"fatherDistanceWeight:", "10"},
    {"minReliabilityBest:", "0.1"},
    {"minReliabilityOthers:", "0.1"},
    {"minCrowdWidth:", "20000"},
    {"minCrowdHeight:", "20000"},
    {"histogramDepth:", "8"},
    {"mvtAreaTh:", "1"},
    {"mvtSpeedTh:", "1"},
    {"mvtSpeedNFrames:", "1"},
    {"mvtFrameGap:", "1"},
    {"mvtBrightnessTh:", "1"},
    {"mvtBlobsFilter:", "1"},
    {"personWidth:", "0.5"},
    {"personDepth:", "0.5"},
    {"personHeight:", "1.7"},
    {"positionNormalization:", "0"},
    {"detectSuddenMvt:", "0"},
    {"trajectoryLength:", "10"},
    {"samplingStride:", "5"},
    {"samplingStrideDetection:", "10"},
    {"gaussianGridFile:", "none"},
    {"alpha:", "0.5"},
    {"minNumCells:", "1"},
}};

}  // namespace

std::string sampleParameters(const std::map<std::string, std::string>& changes, char lineEnd) {
  std::string text;
  for (const auto& [label, value] : pairs) {
    const auto change = changes.find(label);
    text += std::string(label) + " " + (change == changes.end() ? value : change->second) + lineEnd;
  }
  return text;
}

#include "tests/support/process/StaticsGuard.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupColor.h"
#include "tracker/display/GroupExtension.h"
#include "tracker/geometry/Converter.h"
#include "tracker/geometry/Util.h"
#include "tracker/plugin/GroupTrackerProcessGroupTrackerPrivate.h"
#include "tracker/plugin/ParameterReader.h"
#include "tracker/plugin/SuddenDetect.h"
#include "tracker/tracking/Group.h"
#include "tracker/tracking/GroupTracker.h"
#include "tracker/tracking/MetaLPO.h"

#include <fmt/format.h>

#include <type_traits>

namespace {

void startGroupsAnew() {
  Group::currentId = 0;
  GroupColor::resetColors();
}

}  // namespace

StaticsGuard::StaticsGuard() : m_numDigits(GroupExtension::numDigits) {
  for (const auto& parameter : parameterTable()) {
    std::visit([this](const auto* member) { m_parameters.emplace_back(*member); },
               parameter.member);
  }
  startGroupsAnew();
}

StaticsGuard::~StaticsGuard() {
  auto saved = m_parameters.begin();
  for (const auto& parameter : parameterTable()) {
    std::visit([&]<typename T>(T* member) { *member = std::get<T>(*saved++); }, parameter.member);
  }
  GroupExtension::numDigits = m_numDigits;
  Converter::calibration.clear();
  Diagnostics::setEnabled(true);
  startGroupsAnew();
}

void setTestParameters() {
  using Process = GroupTrackerProcessGroupTrackerPrivate;
  Group::coherenceThreshold = 30.0;
  Group::distWeight = 2;
  Group::speedSimWeight = 1;
  Group::dirSimWeight = 1;
  Util::temporalWinSize = 2;
  GroupTracker::maxFrames = 20;
  MetaLPO::recentLinkWeight = 0.6;
  GroupTracker::reliabilityThreshold = 0.3;
  GroupTracker::maxDistGroupCreation = 2.0;
  GroupTracker::maxDistGroupMerge = 3.0;
  GroupTracker::maxDistGroupUpdate = 3.0;
  GroupTracker::tolerance = 0.5;
  GroupTracker::sonDistanceWeight = 5.0;
  GroupTracker::fatherDistanceWeight = 10.0;
  GroupTracker::minReliabilityBest = 0.2;
  GroupTracker::minReliabilityOthers = 0.4;
  // A text that is empty would leave a hole in the file.
  GroupExtension::imagesFolder = "images/";
  GroupExtension::fileFormat = ".png";
  GroupExtension::outputFolder = "out/";
  GroupExtension::firstImage = 1;
  SuddenDetect::gaussianGrid = "none";
  Process::minCrowdWidth = 20000.0;
  Process::minCrowdHeight = 20000.0;
}

std::string parameterText() {
  std::string text;
  for (const auto& parameter : parameterTable()) {
    text += parameter.label;
    std::visit(
        [&]<typename T>(const T* member) {
          if constexpr (std::is_same_v<T, bool>) {
            text += *member ? " 1\n" : " 0\n";
          } else {
            text += fmt::format(" {}\n", *member);
          }
        },
        parameter.member);
  }
  return text;
}

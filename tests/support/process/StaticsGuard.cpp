#include "tests/support/process/StaticsGuard.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupColor.h"
#include "tracker/display/GroupExtension.h"
#include "tracker/geometry/Converter.h"
#include "tracker/plugin/ParameterReader.h"
#include "tracker/tracking/Group.h"

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

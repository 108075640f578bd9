#include "StaticsGuard.h"

#include "Converter.h"
#include "Diagnostics.h"
#include "Group.h"
#include "GroupColor.h"
#include "GroupExtension.h"
#include "ParameterReader.h"

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

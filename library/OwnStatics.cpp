#include "library/OwnStatics.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Converter.h"
#include "tracker/plugin/ParameterReader.h"
#include "tracker/tracking/Group.h"

#include <variant>

namespace grouptracker {

std::mutex OwnStatics::s_mutex;
OwnStatics* OwnStatics::s_inPlace = nullptr;

OwnStatics::OwnStatics(const std::vector<ParameterEntry>& values) {
  for (const ParameterEntry& entry : values) {
    m_parameters.push_back(entry.value);
  }
}

OwnStatics::~OwnStatics() {
  const std::lock_guard<std::mutex> lock(s_mutex);
  if (s_inPlace == this) {
    s_inPlace = nullptr;
    Converter::calibration.clear();
  }
}

// A process reads its parameters once and then only uses them, so that they need not be kept.
void OwnStatics::keep() {
  m_nextGroup = Group::currentId;
  m_calibration = Converter::calibration;
}

void OwnStatics::put() const {
  auto value = m_parameters.begin();
  for (const Parameter& parameter : parameterTable()) {
    std::visit([&]<typename T>(T* member) { *member = std::get<T>(*value++); }, parameter.member);
  }
  Group::currentId = m_nextGroup;
  Converter::calibration = m_calibration;
}

OwnStatics::Use::Use(OwnStatics& statics, std::FILE* printed) : m_lock(s_mutex) {
  if (s_inPlace != &statics) {
    if (s_inPlace != nullptr) {
      s_inPlace->keep();
    }
    statics.put();
    s_inPlace = &statics;
  }
  Diagnostics::setEnabled(printed != nullptr);
  Diagnostics::setOutput(printed);
}

OwnStatics::Use::~Use() {
  Diagnostics::setOutput(nullptr);
  Diagnostics::setEnabled(true);
}

}  // namespace grouptracker

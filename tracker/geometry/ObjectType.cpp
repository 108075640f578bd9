#include "tracker/geometry/ObjectType.h"

#include <algorithm>
#include <array>

namespace {

// The code of a type is its row, in the order of the header. No name begins with another one, so
// the order does not matter to the classification.
constexpr std::array<std::string_view, 4> typeNames = {"PERSON", "GROUP_OF_PERSONS", "NOISE",
                                                       "UNKNOWN"};

}  // namespace

ObjectType::ObjectType(const std::string& type) {
  const auto known =
      std::find_if(typeNames.begin(), typeNames.begin() + unknownCode,
                   [&type](std::string_view name) { return type.starts_with(name); });
  m_code = static_cast<int>(known - typeNames.begin());
}

std::string_view ObjectType::nameOf() const {
  return typeNames[static_cast<std::size_t>(m_code)];
}

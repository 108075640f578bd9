#include "host/run/MobileOwners.h"

#include <algorithm>

namespace grouptracker {

void MobileOwners::note(const InputFrame& frame) {
  for (const auto& actor : frame.actors) {
    const auto& mobiles = actor->getLinkedPhysicalObjectList();
    if (!mobiles.empty()) {
      m_owners[mobiles.back().get()] = {mobiles.back(), actor->getIdent()};
    }
  }
  if (m_owners.size() >= m_cleanUpAt) {
    forgetTheGone();
  }
}

std::optional<std::uint32_t> MobileOwners::ownerOf(const MobilePointer& mobile) const {
  const auto owner = m_owners.find(mobile.get());
  // The place in memory of a mobile that is gone may have been taken by another.
  if (owner == m_owners.end() || owner->second.mobile.toStrongRef() != mobile) {
    return std::nullopt;
  }
  return owner->second.actor;
}

void MobileOwners::forgetTheGone() {
  constexpr std::size_t smallest = 1024;
  std::erase_if(m_owners, [](const auto& entry) { return entry.second.mobile.isNull(); });
  // Twice what is left, so that the cost per mobile stays the same however many there are.
  m_cleanUpAt = std::max(smallest, 2 * m_owners.size());
}

}  // namespace grouptracker

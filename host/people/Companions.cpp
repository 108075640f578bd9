#include "host/people/Companions.h"

namespace grouptracker {

void Companions::see(const PeopleFrame& people) {
  m_memberships.clear();
  for (const FrameGroups& frame : m_finder.next(people)) {
    for (const FoundGroup& group : frame.groups) {
      for (const PersonId member : group.members) {
        m_memberships[member] = {group.id, group.confidence};
      }
    }
  }
}

double Companions::certainty(std::uint32_t a, std::uint32_t b) const {
  const auto groupOfA = m_memberships.find(a);
  const auto groupOfB = m_memberships.find(b);
  const bool areTogether = groupOfA != m_memberships.end() && groupOfB != m_memberships.end() &&
                           groupOfA->second.group == groupOfB->second.group;
  return areTogether ? groupOfA->second.confidence : 0.0;
}

}  // namespace grouptracker

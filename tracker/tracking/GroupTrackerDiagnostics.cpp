#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/tracking/GroupTracker.h"

#include <algorithm>
#include <vector>

namespace {

void printEvents(const char* what, const std::list<Group::Event>& events) {
  if (events.empty()) {
    return;
  }
  Diagnostics::print(", {}", what);
  const char* separator = "";
  for (const auto& [other, frame] : events) {
    Diagnostics::print("{} {} at frame {}", separator, other, frame);
    separator = ",";
  }
}

/// The members' ids, ascending. Taken from the frames, whose members lie close together; those of
/// the map are spread over the memory.
void printMembers(const Group& group) {
  std::vector<int> ids;
  ids.reserve(group.getMobiles().size());
  for (const FrameMembers& frame : group.frames()) {
    for (const MetaLPO* member : frame.members()) {
      ids.push_back(member->getIdent());
    }
  }
  if (!std::is_sorted(ids.begin(), ids.end())) {
    std::sort(ids.begin(), ids.end());
  }
  for (const int id : ids) {
    Diagnostics::write(id, " ");
  }
}

}  // namespace

void GroupTracker::printGroups() const {
  if (!Diagnostics::enabled()) {
    return;
  }
  Diagnostics::print("------------ Groups:\n");
  for (const auto& group : m_groups) {
    Diagnostics::print("- {}, mobiles: ", group->getId());
    printMembers(*group);
    Diagnostics::print("startFrame={}, endFrame={}, isUpdated={}", group->getStartFrame(),
                       group->getEndFrame(), group->isUpdated() ? "true" : "false");
    printEvents("merged with", group->getMerges());
    printEvents("splitted from", group->getSplits());
    Diagnostics::print("\n");
  }
  Diagnostics::print("--------------------\n");
}

void GroupTracker::printMetaMobiles() {
  m_dump.write(m_currentFrame, m_mobiles);
}

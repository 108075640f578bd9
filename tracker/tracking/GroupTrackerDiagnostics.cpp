#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/tracking/GroupTracker.h"

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

}  // namespace

void GroupTracker::printGroups() const {
  if (!Diagnostics::enabled()) {
    return;
  }
  Diagnostics::print("------------ Groups:\n");
  for (const auto& group : m_groups) {
    Diagnostics::print("- {}, mobiles: ", group->getId());
    for (const auto& [id, mobile] : group->getMobiles()) {
      Diagnostics::write(id, " ");
    }
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

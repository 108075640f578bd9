#include "GroupTracker.h"

void GroupTracker::clusterGroups(const QSharedPointer<GroupExtension>&) {
  closeFrame();
}

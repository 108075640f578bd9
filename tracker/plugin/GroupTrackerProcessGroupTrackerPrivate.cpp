#include "tracker/plugin/GroupTrackerProcessGroupTrackerPrivate.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/DisplayGroup.h"
#include "tracker/geometry/Util.h"

#include <fmt/format.h>

bool GroupTrackerProcessGroupTrackerPrivate::useClustering = false;
double GroupTrackerProcessGroupTrackerPrivate::minCrowdWidth = 0.0;
double GroupTrackerProcessGroupTrackerPrivate::minCrowdHeight = 0.0;
int GroupTrackerProcessGroupTrackerPrivate::histogramDepth = 0;
double GroupTrackerProcessGroupTrackerPrivate::mvtAreaTh = 0.0;
double GroupTrackerProcessGroupTrackerPrivate::mvtSpeedTh = 0.0;
int GroupTrackerProcessGroupTrackerPrivate::mvtSpeedNFrames = 0;
int GroupTrackerProcessGroupTrackerPrivate::mvtFrameGap = 0;
int GroupTrackerProcessGroupTrackerPrivate::mvtBrightnessTh = 0;
int GroupTrackerProcessGroupTrackerPrivate::mvtBlobsFilter = 0;
bool GroupTrackerProcessGroupTrackerPrivate::positionNormalization = false;
bool GroupTrackerProcessGroupTrackerPrivate::detectSuddenMvt = false;
int GroupTrackerProcessGroupTrackerPrivate::minNumCells = 0;

GroupTrackerProcessGroupTrackerPrivate::GroupTrackerProcessGroupTrackerPrivate()
    : extension(QSharedPointer<GroupExtension>::create()) {}

GroupTrackerProcessGroupTrackerPrivate::GroupTrackerProcessGroupTrackerPrivate(
    const GroupTrackerProcessGroupTrackerPrivate& other)
    : kelAbstractProcessGroupTrackerPrivate(other),
      extension(QSharedPointer<GroupExtension>::create()),
      parameterUser(other.parameterUser) {
  specificParameters.clear();
}

GroupTrackerProcessGroupTrackerPrivate::~GroupTrackerProcessGroupTrackerPrivate() = default;

std::string GroupTrackerProcessGroupTrackerPrivate::avgIntraDist(const kelDataActor& actor) {
  const auto& objects = actor.getLinkedPhysicalObjectList();
  double sum = 0.0;
  int count = 0;
  for (auto i = objects.begin(); i != objects.end(); ++i) {
    for (auto j = i; j != objects.end(); ++j) {
      if ((*i)->getIdent() != (*j)->getIdent()) {
        sum += Util::distance3D((*i)->getPhysicalObject()->getBoundingBox3D(),
                                (*j)->getPhysicalObject()->getBoundingBox3D());
        ++count;
      }
    }
  }
  return fmt::format("{:g}", count > 0 ? sum / count : 0.0);
}

void GroupTrackerProcessGroupTrackerPrivate::updateDisplay(
    const QMap<int, QSharedPointer<Group>>& groups, int frame,
    const GroupTracker::MobileList& mobiles) {
  std::list<DisplayGroup> displayed;
  for (const auto& group : groups) {
    if (group->getEndFrame() != noFrame && group->getEndFrame() < frame) {
      continue;
    }
    Diagnostics::print("comment (updateDisplay): {}\n", group->getComment());
    DisplayGroup record(unsignedId(group->getId()), group->getColor(), group->getComment());
    for (const MetaLPO* mobile : group->membersAt(frame)) {
      record.addMobile(unsignedId(mobile->getIdent()), mobile->observation().getBoundingBox2D());
    }
    displayed.push_back(record);
  }
  extension->drawGroups(displayed);
  for (const auto& mobile : mobiles) {
    extension->addBbox(mobile->observation().getBoundingBox2D(),
                       mobile->getPhysicalObject()->getIdent());
  }
}

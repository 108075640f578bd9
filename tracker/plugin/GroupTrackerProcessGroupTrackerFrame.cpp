#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Numbering.h"
#include "tracker/geometry/Util.h"
#include "tracker/plugin/GroupTrackerProcessGroupTracker.h"
#include "tracker/plugin/GroupTrackerProcessGroupTrackerPrivate.h"
#include "tracker/plugin/PresentActors.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <list>

namespace {

constexpr int eventMemory = 49;      // frames for which a merge or split stays in the output
constexpr float sceneReach = 10000;  // metres; half the side of the box that every group reports

double height(const BoundingBox3D& box) {
  return std::abs(box.b2 - box.b5);
}
double width(const BoundingBox3D& box) {
  return std::abs(box.b0 - box.b3);
}

// Adds a line of parts that ends with the size of a box.
template <typename... Parts>
void printWithSize(const BoundingBox3D& box, const Parts&... parts) {
  Diagnostics::write(parts..., "   height: ", height(box), ",    width: ", width(box), "\n");
}

// The image box that holds the boxes of a group's members. The smallest edges are looked for below
// 10000 pixels only.
class Extent {
 public:
  void widen(const cv::Rect& box) {
    m_minX = std::min(m_minX, box.x);
    m_maxX = std::max(m_maxX, box.x + box.width);
    m_minY = std::min(m_minY, box.y);
    m_maxY = std::max(m_maxY, box.y + box.height);
  }
  cv::Rect box() const {
    return {std::min(m_minX, m_maxX), std::min(m_minY, m_maxY), std::abs(m_maxX - m_minX),
            std::abs(m_maxY - m_minY)};
  }

 private:
  int m_minX = 10000;
  int m_maxX = 0;
  int m_minY = 10000;
  int m_maxY = 0;
};

// Adds the group's mobiles at the frame with their mean position and common box; false when there
// are none.
bool addMembers(kelDataActor& actor, const Group& group, int frame) {
  Extent extent;
  cv::Point3f sum(0.0F, 0.0F, 0.0F);
  int count = 0;
  for (const MetaLPO* mobile : group.membersAt(frame)) {
    actor.addLinkedPhysicalObject(mobile->getPhysicalObject());
    extent.widen(mobile->observation().getBoundingBox2D());
    sum += mobile->observation().getPosition();
    ++count;
  }
  if (count == 0) {
    return false;
  }
  const auto divisor = static_cast<float>(count);
  actor.setCurrentPosition({sum.x / divisor, sum.y / divisor, sum.z / divisor});
  actor.setBoundingBox2D(extent.box());
  return true;
}

// Every group reports the whole scene as its box, so that whoever filters by place keeps it. The
// crowd thresholds are compared crosswise with it.
void addSceneBox(kelDataActor& actor) {
  using Process = GroupTrackerProcessGroupTrackerPrivate;
  actor.setBoundingBox3D(
      {-sceneReach, -sceneReach, -sceneReach, sceneReach, sceneReach, sceneReach});
  const BoundingBox3D& box = actor.getBoundingBox3D();
  if (height(box) > Process::minCrowdWidth || width(box) > Process::minCrowdHeight) {
    actor.addSpecificProperty(QStringLiteral("TypeOfGroup"), QStringLiteral("CROWD"));
  }
}

int recentEvent(const std::list<Group::Event>& events, int reportedFrame) {
  const bool isRecent = !events.empty() && events.back().second >= reportedFrame - eventMemory;
  return isRecent ? events.back().first : -1;
}

}  // namespace

void GroupTrackerProcessGroupTracker::process() {
  const Diagnostics::FlushAtExit flushAtExit;
  ++d().frameCounter;
  Diagnostics::print("\n\n********************************\n");
  Diagnostics::print("********** Frame {} *************\n\n", static_cast<int>(d().frameCounter));
  d().queueImage();
  d().takeActors();
  d().printActors();
  d().prepareExtension();
  d().track();
  d().reportGroups();
  d().drawOutput();
  setProperty("outputProblem", d().outputProblem());
}

bool GroupTrackerProcessGroupTrackerPrivate::displays() {
  return GroupExtension::extDisplayOn || GroupExtension::saveOutput;
}

int GroupTrackerProcessGroupTrackerPrivate::reportedFrame() const {
  return delayed(frameCounter);
}

void GroupTrackerProcessGroupTrackerPrivate::queueImage() {
  if (!displays()) {
    return;
  }
  if (imageQueue.size() >= Util::temporalWinSize && !imageQueue.empty()) {
    delayedImage = imageQueue.front();
    imageQueue.pop_front();
  }
  imageQueue.push_back(currentImage);
}

void GroupTrackerProcessGroupTrackerPrivate::takeActors() {
  const PresentActors present(actors);
  presentActors = present.list();
  if (const std::string missing = present.missing(); !missing.empty()) {
    GroupTrackerProcessGroupTracker::logError(
        fmt::format("Frame {}: {} passed over", frameCounter, missing).c_str());
  }
}

void GroupTrackerProcessGroupTrackerPrivate::printActors() const {
  if (!Diagnostics::enabled()) {
    return;
  }
  Diagnostics::print("{} TPOs\n", presentActors.size());
  for (const auto& actor : presentActors) {
    Diagnostics::write("TPO id: ", signedId(actor->getIdent()), "\n");
    printWithSize(actor->getBoundingBox3D(), "   type: ", actor->getType(), ", ");
    const auto& mobiles = actor->getLinkedPhysicalObjectList();
    // All at once from memory: a quarter of what these lines cost was waiting for one by one.
    for (const auto& mobile : mobiles) {
      __builtin_prefetch(mobile.data());
    }
    for (const auto& mobile : mobiles) {
      __builtin_prefetch(mobile->getPhysicalObject().data());
    }
    for (const auto& mobile : mobiles) {
      const kelDataPhysicalObject& object = *mobile->getPhysicalObject();
      printWithSize(object.getBoundingBox3D(), "   id: ", signedId(mobile->getIdent()),
                    ",    type: ", object.getType(), ", ");
    }
  }
}

void GroupTrackerProcessGroupTrackerPrivate::prepareExtension() {
  if (displays() && delayedImage) {
    extension->setCurrentImage(delayedImage);
    extension->setFrameNumber(static_cast<int>(frameCounter));
    extension->resetBboxes();
  }
}

void GroupTrackerProcessGroupTrackerPrivate::track() {
  tracker.initFrame(presentActors, delayedImage, frameCounter);
  presentActors.clear();  // the host's list is its own again, and cheap to append to
  if (useClustering) {
    tracker.clusterGroups(extension);
  } else {
    tracker.trackGroups();
  }
}

void GroupTrackerProcessGroupTrackerPrivate::reportGroups() {
  if (tracker.getGroups().isEmpty()) {
    return;
  }
  const auto splits = splitsByGroup(static_cast<unsigned int>(reportedFrame()));
  for (const auto& group : tracker.getGroups()) {
    group->setComment("");
    const auto actor = actorOf(*group, reportedFrame());
    if (const auto split = splits.find(unsignedId(group->getId())); split != splits.end()) {
      actor->addSpecificProperty(QStringLiteral("MobileSplit"),
                                 QString::fromStdString(split->second));
    }
    actors.append(actor);
  }
}

// For each group the mobiles of the frame that are in no group but most probably belong to it.
std::map<unsigned int, std::string> GroupTrackerProcessGroupTrackerPrivate::splitsByGroup(
    unsigned int frame) {
  std::map<unsigned int, std::string> splits;
  for (const auto& mobile : tracker.mobilesAt(frame)) {
    if (mobile->getGroupId() == noId) {
      splits[tracker.probableGroupRaw(mobile)] += std::to_string(mobile->getIdent()) + ";";
    }
  }
  return splits;
}

QSharedPointer<kelDataActor> GroupTrackerProcessGroupTrackerPrivate::actorOf(const Group& group,
                                                                             int reportedFrame) {
  auto actor = QSharedPointer<kelDataActor>::create();
  actor->setIdent(unsignedId(group.getId()));
  const bool hasEnded = group.getEndFrame() != noFrame;
  const int groupFrame = hasEnded ? std::min(reportedFrame, group.getEndFrame()) : reportedFrame;
  if (!addMembers(*actor, group, groupFrame)) {
    return actor;
  }
  addSceneBox(*actor);
  if (groupFrame != reportedFrame) {
    actor->addSpecificProperty(QStringLiteral("Visible"), QStringLiteral("false"));
    return actor;
  }
  actor->addSpecificProperty(QStringLiteral("Visible"), true);
  actor->addSpecificProperty(QStringLiteral("AvgIntraDist"),
                             QString::fromStdString(avgIntraDist(*actor)));
  actor->addSpecificProperty(QStringLiteral("NumberOfMobiles"),
                             static_cast<qulonglong>(actor->getLinkedPhysicalObjectList().size()));
  actor->addSpecificProperty(QStringLiteral("Merge"),
                             recentEvent(group.getMerges(), reportedFrame));
  actor->addSpecificProperty(QStringLiteral("Split"),
                             recentEvent(group.getSplits(), reportedFrame));
  return actor;
}

// A dump that nobody asked for by name is nobody's loss where no file can be made.
QVariant GroupTrackerProcessGroupTrackerPrivate::outputProblem() const {
  QStringList problem = extension->saveProblem();
  const MobileDump& dump = tracker.mobileDump();
  const bool isWanted =
      dump.hasWritten() || specificParameters.value("mobileDump").type() == QVariant::String;
  if (!dump.problem().empty() && isWanted) {
    problem = QStringList{QString::fromStdString(dump.file()),
                          "cannot be written: " + QString::fromStdString(dump.problem())};
  }
  return problem.isEmpty() ? QVariant() : QVariant(problem);
}

void GroupTrackerProcessGroupTrackerPrivate::drawOutput() {
  if (displays()) {
    updateDisplay(tracker.getGroups(), reportedFrame(),
                  tracker.mobilesAt(static_cast<unsigned int>(reportedFrame())));
  }
  if (GroupExtension::saveOutput && GroupExtension::openCVOutput) {
    extension->saveOutputWithOpenCV();
  }
}

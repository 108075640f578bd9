#include "tracker/tracking/Group.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/display/GroupColor.h"
#include "tracker/geometry/ObjectType.h"

#include <algorithm>

double Group::coherenceThreshold = 0.0;
unsigned int Group::distWeight = 0;
unsigned int Group::speedSimWeight = 0;
unsigned int Group::dirSimWeight = 0;
double Group::distanceThreshold = 0.0;
double Group::speedSimThreshold = 0.0;
double Group::dirSimThreshold = 0.0;
int Group::currentId = 0;

namespace {

void addOnce(std::list<Group::Event>& events, int other, int frame) {
  const bool known = std::any_of(events.begin(), events.end(),
                                 [&](const Group::Event& event) { return event.first == other; });
  if (!known) {
    events.emplace_back(other, frame);
  }
}

}  // namespace

int Group::getNewId() {
  Diagnostics::print("currentId group = {}\n", currentId);
  return currentId++;
}

void Group::forgetLastId() {
  --currentId;
  Diagnostics::print("currentId-- {}\n", currentId);
}

Group::Group() {
  init();
}

Group::Group(unsigned int frame) : m_startFrame(static_cast<int>(frame)) {
  init();
}

Group::Group(const QSharedPointer<MetaLPO>& mobile)
    : m_startFrame(static_cast<int>(mobile->getFrame())) {
  init();
  addMobile(mobile);
  m_bestMobileId = mobile->getIdent();
}

Group::Group(const QSharedPointer<kelDataLinkedPhysicalObject>& object, unsigned int frame)
    : m_startFrame(static_cast<int>(frame)) {
  init();
  addMobile(object, static_cast<int>(frame));
  m_bestMobileId = signedId(object->getIdent());
}

Group::Group(const Group& other)
    : m_id(other.m_id),
      m_color(other.m_color),
      m_isUpdated(other.m_isUpdated),
      m_members(other.m_members),
      m_bestMobileId(other.m_bestMobileId),
      m_startFrame(other.m_startFrame),
      m_endFrame(other.m_endFrame),
      m_numMobiles(other.m_numMobiles),
      m_framesAlone(other.m_framesAlone),
      m_mobilesLeft(other.m_mobilesLeft),
      m_cohesion(other.m_cohesion) {}

Group::~Group() = default;

void Group::init() {
  m_id = getNewId();
  m_color = GroupColor::getNewColor();
}

void Group::addMobile(const QSharedPointer<MetaLPO>& mobile) {
  m_members.add(mobile);
  m_isUpdated = true;
  updateProperties(mobile->getFrame());
  countNewMobile(*mobile);
}

void Group::addMobile(const QSharedPointer<kelDataLinkedPhysicalObject>& object, int frame) {
  addMobile(QSharedPointer<MetaLPO>::create(object, static_cast<unsigned int>(frame)));
}

void Group::countNewMobile(const MetaLPO& mobile) {
  const int weight = headCount(mobile.getType());
  const int fatherId = mobile.getBestFatherId();
  if (fatherId == mobile.getIdent() || !m_members.contains(fatherId)) {
    m_numMobiles += weight;
    return;
  }
  const unsigned int frame = mobile.getFrame();
  if (numMobilesAtFrame(frame - 1) >= numMobilesAtFrame(frame)) {
    return;
  }
  // Somebody continues a member and yet there are more than before: first those who left are
  // taken to be back.
  if (m_mobilesLeft == 0) {
    m_numMobiles += weight;
  } else {
    m_mobilesLeft -= weight;
  }
}

void Group::removeMobile(int id) {
  if (m_members.remove(id)) {
    computeBestMobile(-1);
  }
}

bool Group::contains(const QSharedPointer<kelDataLinkedPhysicalObject>& object) const {
  return m_members.contains(signedId(object->getIdent()));
}

std::vector<QSharedPointer<kelDataLinkedPhysicalObject>> Group::getLPOs() const {
  std::vector<QSharedPointer<kelDataLinkedPhysicalObject>> objects;
  objects.reserve(getMobiles().size());
  for (const auto& [id, mobile] : getMobiles()) {
    objects.push_back(mobile->getPhysicalObject());
  }
  return objects;
}

int Group::numMobilesAtFrame(unsigned int frame) const {
  const FrameMembers* members = m_members.at(frame);
  return members == nullptr ? 0 : members->presence();
}

int Group::countDistinctFrames() const {
  return static_cast<int>(m_members.frames().size());
}

void Group::printMobiles() const {
  Diagnostics::print("Mobiles of group {}: ", m_id);
  for (const auto& [id, mobile] : getMobiles()) {
    Diagnostics::print("{}, ", id);
  }
  Diagnostics::print("\n");
}

void Group::doMerge(const QSharedPointer<Group>& other) {
  for (const auto& [id, mobile] : other->getMobiles()) {
    addMobile(mobile);
  }
}

void Group::addMerge(int other, int frame) {
  addOnce(m_merges, other, frame);
}

void Group::addSplit(int other, int frame) {
  addOnce(m_splits, other, frame);
}

#include "tracker/plugin/PresentActors.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

using MobilePointer = QSharedPointer<kelDataLinkedPhysicalObject>;

bool isEmpty(const MobilePointer& mobile) {
  return mobile.isNull() || mobile->getPhysicalObject().isNull();
}

bool isComplete(const QSharedPointer<kelDataActor>& actor) {
  if (actor.isNull()) {
    return false;
  }
  const auto& mobiles = actor->getLinkedPhysicalObjectList();
  return std::none_of(mobiles.begin(), mobiles.end(), isEmpty);
}

/// All of the actor but its mobiles.
QSharedPointer<kelDataActor> withoutMobiles(const kelDataActor& actor) {
  auto copy = QSharedPointer<kelDataActor>::create();
  copy->setIdent(actor.getIdent());
  copy->setType(actor.getType());
  copy->setCurrentPosition(actor.getCurrentPosition());
  copy->setBoundingBox2D(actor.getBoundingBox2D());
  copy->setBoundingBox3D(actor.getBoundingBox3D());
  return copy;
}

std::string counted(int count, const char* what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

}  // namespace

PresentActors::PresentActors(const Actors& actors) {
  if (std::all_of(actors.begin(), actors.end(), isComplete)) {
    m_actors = actors;
    return;
  }
  for (const auto& actor : actors) {
    add(actor);
  }
}

void PresentActors::add(const QSharedPointer<kelDataActor>& actor) {
  if (isComplete(actor)) {
    m_actors.append(actor);
    return;
  }
  if (actor.isNull() || isEmpty(actor->getLinkedPhysicalObjectList().back())) {
    ++m_missingActors;
    return;
  }
  const auto copy = withoutMobiles(*actor);
  for (const auto& mobile : actor->getLinkedPhysicalObjectList()) {
    if (isEmpty(mobile)) {
      ++m_missingMobiles;
    } else {
      copy->addLinkedPhysicalObject(mobile);
    }
  }
  m_actors.append(copy);
}

std::string PresentActors::missing() const {
  const std::string actors = m_missingActors > 0 ? counted(m_missingActors, "actor") : "";
  const std::string mobiles = m_missingMobiles > 0 ? counted(m_missingMobiles, "mobile") : "";
  return actors.empty() || mobiles.empty() ? actors + mobiles : actors + " and " + mobiles;
}

#include "host/run/PeopleInView.h"

namespace grouptracker {

std::vector<PersonPlace> peopleInView(const InputFrame& frame) {
  std::vector<PersonPlace> people;
  for (const auto& actor : frame.actors) {
    const auto& mobiles = actor->getLinkedPhysicalObjectList();
    if (mobiles.empty()) {
      continue;
    }
    const auto body = mobiles.back()->getPhysicalObject();
    const cv::Point3f& at = body->getPosition();
    people.push_back({actor->getIdent(), {at.x, at.y}, body->getBoundingBox2D()});
  }
  return people;
}

}  // namespace grouptracker

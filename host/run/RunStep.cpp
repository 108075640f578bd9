#include "host/run/RunStep.h"

#include "host/people/InputFrame.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

constexpr double perSecond = 1e6;  // times are told to the microsecond

/// The mobile that an actor has at the frame; null for an actor without any.
const kelDataLinkedPhysicalObject* currentMobile(const kelDataActor& actor) {
  const auto& mobiles = actor.getLinkedPhysicalObjectList();
  return mobiles.empty() ? nullptr : mobiles.back().get();
}

Sighting sightingOf(const kelDataLinkedPhysicalObject& mobile) {
  const auto& body = *mobile.getPhysicalObject();
  const cv::Point3f& at = body.getPosition();
  return {{at.x, at.y}, body.getBoundingBox2D()};
}

std::optional<cv::Point2f> placeOf(const RunMember& member, const InputFrame& frame) {
  const auto owner =
      std::find_if(frame.actors.begin(), frame.actors.end(), [&member](const auto& actor) {
        const auto* const mobile = currentMobile(*actor);
        return mobile != nullptr && mobile->getIdent() == member.mobile &&
               (!member.person || actor->getIdent() == *member.person);
      });
  return owner == frame.actors.end() ? std::nullopt
                                     : std::optional(sightingOf(*currentMobile(**owner)).ground);
}

/// Who is seen, in ascending order, each once.
void keepThoseInView(std::vector<RunPerson>& persons) {
  std::erase_if(persons, [](const RunPerson& person) { return !person.seen; });
  std::stable_sort(persons.begin(), persons.end(),
                   [](const RunPerson& a, const RunPerson& b) { return a.id < b.id; });
  const auto end = std::unique(persons.begin(), persons.end(),
                               [](const RunPerson& a, const RunPerson& b) { return a.id == b.id; });
  persons.erase(end, persons.end());
}

const RunPerson* find(const std::vector<RunPerson>& persons, std::uint32_t id) {
  const auto found = std::lower_bound(
      persons.begin(), persons.end(), id,
      [](const RunPerson& person, std::uint32_t other) { return person.id < other; });
  return found == persons.end() || found->id != id ? nullptr : &*found;
}

}  // namespace

// Of a number that is no whole one there is nothing to decode; the process writes none.
void RunGroup::decodeProperties() {
  isVisible = false;
  isCrowd = false;
  merge.reset();
  split.reset();
  for (const auto& [name, value] : properties) {
    const auto* const number = std::get_if<std::int64_t>(&value);
    if (name == "Visible") {
      // An old member set is marked with the word "false", a current one with the truth value.
      isVisible = value == PropertyValue(true);
    } else if (name == "TypeOfGroup") {
      isCrowd = value == PropertyValue("CROWD");
    } else if (name == "Merge" && number != nullptr) {
      merge = *number;
    } else if (name == "Split" && number != nullptr) {
      split = *number;
    }
  }
}

std::vector<RunPerson> personsIn(const InputFrame& frame) {
  std::vector<RunPerson> persons;
  persons.reserve(static_cast<std::size_t>(frame.actors.size()));
  for (const auto& actor : frame.actors) {
    const auto* const mobile = currentMobile(*actor);
    persons.push_back(
        {actor->getIdent(), mobile == nullptr ? std::nullopt : std::optional(sightingOf(*mobile))});
  }
  return persons;
}

std::optional<double> toldTime(const std::optional<double>& time) {
  return time ? std::optional(std::round(*time * perSecond) / perSecond) : std::nullopt;
}

void addInput(const InputFrame& frame, RunStep& step) {
  step.inputFrame = frame.number;
  step.place = frame.place;
  step.persons = personsIn(frame);
  step.imageFile = frame.imageFile;
  // An image that has a file can be read again, without what the process drew on it.
  step.image = frame.imageFile.empty() ? frame.image : nullptr;
  if (step.source == GroupSource::evidence) {
    step.time = toldTime(frame.time);
    keepThoseInView(step.persons);
    placeMembers(step);
    return;
  }
  for (RunGroup& group : step.groups) {
    for (RunMember& member : group.members) {
      member.place = group.isVisible ? placeOf(member, frame) : std::nullopt;
    }
  }
}

void placeMembers(RunStep& step) {
  for (RunGroup& group : step.groups) {
    cv::Rect around;
    bool haveBoxes = true;
    for (RunMember& member : group.members) {
      const RunPerson* const person = member.person ? find(step.persons, *member.person) : nullptr;
      if (person == nullptr || !person->seen) {
        haveBoxes = false;
        continue;
      }
      member.place = person->seen->ground;
      haveBoxes = haveBoxes && !person->seen->box2D.empty();
      around = around.empty() ? person->seen->box2D : around | person->seen->box2D;
    }
    group.box2D = haveBoxes ? std::optional(around) : std::nullopt;
  }
}

}  // namespace grouptracker

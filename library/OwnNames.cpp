#include "library/OwnNames.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <variant>

namespace grouptracker {

namespace {

std::uint32_t numberIn(PersonNames& names, const PersonName& name) {
  return std::visit([&names](const auto& known) { return names.numberOf(known); }, name);
}

}  // namespace

OwnNames::OwnNames(std::size_t remembered) {
  remembered > 0 ? m_names.remember(remembered) : void();
}

std::uint32_t OwnNames::ownOf(std::uint32_t person) {
  return person < PersonNames::firstAlias
             ? person
             : numberIn(m_names, PersonNames::ofProgram().nameOf(person));
}

double OwnNames::ownOf(double person) {
  constexpr double largest = std::numeric_limits<std::uint32_t>::max();
  const bool isAlias = person >= PersonNames::firstAlias && person <= largest;
  return isAlias && std::trunc(person) == person ? ownOf(static_cast<std::uint32_t>(person))
                                                 : person;
}

std::uint32_t OwnNames::programsOf(std::uint32_t own) const {
  return own < PersonNames::firstAlias ? own
                                       : numberIn(PersonNames::ofProgram(), m_names.nameOf(own));
}

/// In the order of the program's numbers.
void OwnNames::giveBack(std::vector<std::uint32_t>& persons) const {
  if (std::all_of(persons.begin(), persons.end(),
                  [](std::uint32_t person) { return person < PersonNames::firstAlias; })) {
    return;
  }
  for (std::uint32_t& person : persons) {
    person = programsOf(person);
  }
  std::sort(persons.begin(), persons.end());
}

void OwnNames::giveBack(TrackerStep& step) const {
  giveBack(step.alone);
  for (TrackerGroup& group : step.groups) {
    giveBack(group.members);
  }
  for (TrackerEvent& event : step.events) {
    giveBack(event.persons);
  }
}

void OwnNames::giveBack(RunStep& step) const {
  for (RunPerson& person : step.persons) {
    person.id = programsOf(person.id);
  }
  for (RunGroup& group : step.groups) {
    for (RunMember& member : group.members) {
      member.person = member.person ? std::optional(programsOf(*member.person)) : std::nullopt;
    }
  }
}

}  // namespace grouptracker

#include "host/explain/PairStory.h"

#include "host/base/PersonNames.h"
#include "host/explain/PairWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace grouptracker {

namespace {

constexpr double pause = 5.0;  // seconds out of view after which a new paragraph begins
const char* const thresholdRemark =
    "  the two alone would nearly do, but a new group has to be believed for a moment, and "
    "whoever\n"
    "  joins a group must go with its members on average\n";
const char* const companyRemark =
    "  the two alone would not be together: the others of their group hold them, who was together "
    "tends\n"
    "  to stay, or two whole groups came near each other from afar and went on as one\n";
constexpr double nearMiss = -1.5;  // log-odds from which on it is worth telling
constexpr double neverNear = 6.0;  // metres; farther people are not compared

const PersonAt* find(const std::vector<PersonAt>& people, PersonId person) {
  const auto found = std::find_if(people.begin(), people.end(),
                                  [person](const PersonAt& one) { return one.person == person; });
  return found == people.end() ? nullptr : &*found;
}

std::string nameOf(PersonId person) {
  return PersonNames::ofProgram().textOf(person);
}

std::string othersIn(const std::vector<PersonId>& group, PersonId person) {
  std::vector<PersonId> others;
  std::copy_if(group.begin(), group.end(), std::back_inserter(others),
               [person](PersonId other) { return other != person; });
  std::string names;
  for (const PersonId other : others) {
    names += (names.empty() ? "" : ", ") + nameOf(other);
  }
  return names;
}

/// With whom the two are instead.
std::string company(const PairMoment& moment, PersonId a, PersonId b) {
  const auto of = [](PersonId person, const std::vector<PersonId>& group) {
    return group.empty()
               ? fmt::format("{} is alone", nameOf(person))
               : fmt::format("{} is in a group with {}", nameOf(person), othersIn(group, person));
  };
  return fmt::format("  at {:.1f} s {}, {}\n", moment.time, of(a, moment.groupOfA),
                     of(b, moment.groupOfB));
}

std::string percent(double probability) {
  return fmt::format("{:.0f} %", 100.0 * probability);
}

bool isLessSure(const PairMoment& a, const PairMoment& b) {
  return a.logOdds() < b.logOdds();
}

}  // namespace

PairStory::PairStory(PersonId a, PersonId b, EvidenceModel model)
    : m_a(std::min(a, b)), m_b(std::max(a, b)), m_model(std::move(model)) {}

void PairStory::watch(const PeopleFrame& frame, GroupFinder& finder) {
  finder.watchTicks([this](const PeopleFrame& tick, const TickBeliefs& beliefs) {
    const PersonAt* const a = find(tick.people, m_a);
    const PersonAt* const b = find(tick.people, m_b);
    if (a == nullptr || b == nullptr) {
      return;
    }
    PairMoment& moment = m_moments.emplace_back();
    moment.frame = tick.number;
    moment.time = beliefs.time;
    moment.distance = distanceBetween(a->place, b->place);
    for (const PairBelief& pair : beliefs.pairs) {
      if (pair.a == m_a && pair.b == m_b) {
        moment.belief = pair;
      }
    }
  });
  m_sawA = m_sawA || find(frame.people, m_a) != nullptr;
  m_sawB = m_sawB || find(frame.people, m_b) != nullptr;
  take(finder.next(frame));
}

void PairStory::finish(GroupFinder& finder) {
  take(finder.finish());
}

bool PairStory::saw(PersonId person) const {
  return person == m_a ? m_sawA : person == m_b && m_sawB;
}

/// Fills in the groups of the moments that were decided.
void PairStory::take(const std::vector<FrameGroups>& decided) {
  for (const FrameGroups& frame : decided) {
    if (m_grouped == m_moments.size() || m_moments[m_grouped].frame != frame.frame) {
      continue;
    }
    PairMoment& moment = m_moments[m_grouped++];
    for (const FoundGroup& group : frame.groups) {
      const bool hasA = std::binary_search(group.members.begin(), group.members.end(), m_a);
      const bool hasB = std::binary_search(group.members.begin(), group.members.end(), m_b);
      moment.groupOfA = hasA ? group.members : moment.groupOfA;
      moment.groupOfB = hasB ? group.members : moment.groupOfB;
      moment.group = hasA && hasB ? group.id : moment.group;
    }
  }
}

std::vector<PairStory::Phase> PairStory::phases() const {
  std::vector<Phase> phases;
  for (std::size_t i = 0; i < m_moments.size(); ++i) {
    const bool goesOn = !phases.empty() && m_moments[i].group == m_moments[i - 1].group &&
                        m_moments[i].time - m_moments[i - 1].time <= pause;
    if (goesOn) {
      phases.back().last = i;
    } else {
      phases.push_back({i, i});
    }
  }
  return phases;
}

std::string PairStory::overview() const {
  const auto together = std::count_if(m_moments.begin(), m_moments.end(),
                                      [](const PairMoment& moment) { return moment.group != 0; });
  const auto nearest = std::min_element(
      m_moments.begin(), m_moments.end(),
      [](const PairMoment& a, const PairMoment& b) { return a.distance < b.distance; });
  return fmt::format(
      "Persons {} and {} are in view together from {:.1f} s (frame {}) to {:.1f} s (frame {}) and "
      "in "
      "one group {:.0f} % of that time.\nThey are nearest at {:.1f} s, {:.1f} m.\n",
      nameOf(m_a), nameOf(m_b), m_moments.front().time, m_moments.front().frame,
      m_moments.back().time, m_moments.back().frame,
      100.0 * static_cast<double>(together) / static_cast<double>(m_moments.size()), nearest->time,
      nearest->distance);
}

std::string PairStory::text() const {
  if (m_moments.empty()) {
    return fmt::format("Persons {} and {} are never in view together.\n", nameOf(m_a), nameOf(m_b));
  }
  std::string text = overview();
  if (std::none_of(m_moments.begin(), m_moments.end(),
                   [](const PairMoment& moment) { return moment.belief.has_value(); })) {
    return text + fmt::format(
                      "They never come within {:.0f} m of each other, so nothing speaks for "
                      "their being together.\n",
                      neverNear);
  }
  text +=
      "Numbers behind for and against are log-odds: +1 makes it 2.7 times as likely, -1 as "
      "unlikely.\nThey are about the six seconds before a moment and what follows within the "
      "look-ahead.\n";
  for (const Phase& phase : phases()) {
    text += '\n';
    text += describe(phase);
  }
  return text;
}

/// A phase is explained at one moment: the middle of a time together, and of one apart the moment
/// at which it came closest to a group.
std::string PairStory::describe(const Phase& phase) const {
  const auto begin = m_moments.begin() + static_cast<std::ptrdiff_t>(phase.first);
  const auto end = m_moments.begin() + static_cast<std::ptrdiff_t>(phase.last) + 1;
  const bool areTogether = begin->group != 0;
  const std::string heading = fmt::format("{:.1f} s to {:.1f} s (frames {} to {}): ", begin->time,
                                          (end - 1)->time, begin->frame, (end - 1)->frame);
  const PairMoment& least = *std::min_element(begin, end, isLessSure);
  const PairMoment& most = *std::max_element(begin, end, isLessSure);
  const PairMoment& middle = *(begin + (end - begin) / 2);
  if (areTogether) {
    return heading +
           fmt::format("together, group {}\n  {} sure at least ({:.1f} s), {} at most ({:.1f} s)\n",
                       begin->group, percent(certaintyOf(least.logOdds())), least.time,
                       percent(certaintyOf(most.logOdds())), most.time) +
           explain(middle) + (middle.logOdds() < 0.0 ? companyRemark : "");
  }
  return heading +
         fmt::format("not together\n  {} at {:.1f} s: {} sure that they belong together\n",
                     most.logOdds() > nearMiss ? "a near miss" : "most likely", most.time,
                     percent(certaintyOf(most.logOdds()))) +
         explain(most) + company(middle, m_a, m_b) + (most.logOdds() > 0.0 ? thresholdRemark : "");
}

std::string PairStory::explain(const PairMoment& moment) const {
  if (!moment.belief || !moment.belief->features) {
    return fmt::format("  {:.1f} m lie between them, too far to be together\n", moment.distance);
  }
  const PairFeatures& features = *moment.belief->features;
  return fmt::format("  what was seen around {:.1f} s makes it {} likely by itself:\n", moment.time,
                     percent(probabilityOf(moment.belief->evidence))) +
         reasonsFor(features, m_model) + whatWouldTurn(features, m_model);
}

}  // namespace grouptracker

#include "host/simulation/Encounters.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace grouptracker {

namespace {

using Company = std::vector<Walker*>;
using Kind = GroupEvent::Kind;

constexpr double foresight = 6.0;        // s for which people must stay in view to be fit
constexpr double earSight = 12.0;        // m from which people head for others
constexpr double meetingDistance = 1.3;  // m between the nearest; then they are together
constexpr double partingDistance = 2.4;  // m between the nearest; then they are apart
constexpr double secondsToTurn = 2.0;    // s that a difference of velocities counts as distance

double length(const cv::Point2d& v) {
  return std::sqrt(v.dot(v));
}

bool joinsOthers(Kind kind) {
  return kind == Kind::joined || kind == Kind::merged;
}

double nearestDistance(const Company& some, const Company& others) {
  double nearest = std::numeric_limits<double>::max();
  for (const Walker* const a : some) {
    for (const Walker* const b : others) {
      nearest = std::min(nearest, length(a->position - b->position));
    }
  }
  return nearest;
}

/// How far some are from walking with others.
double effort(const Company& some, const Company& others) {
  return nearestDistance(some, others) +
         length(some.front()->velocity - others.front()->velocity) * secondsToTurn;
}

/// The size that a company must have to be the one that moves.
bool mayApproach(Kind kind, const Company& company) {
  return kind == Kind::joined ? company.size() == 1 : company.size() > 1;
}

bool mayPart(Kind kind, const Company& company) {
  return company.size() >= (kind == Kind::left ? 3U : 4U);
}

}  // namespace

Encounters::Encounters(const SimulationOptions& options, const SimulatedView& view,
                       RandomNumbers& random)
    : m_view(view), m_random(random) {
  const double duration = options.frames / options.rate;
  const auto plan = [&](Kind kind, int count) {
    for (int i = 0; i < count; ++i) {
      m_planned.push_back({kind, random.uniform(0.05 * duration, 0.75 * duration)});
    }
  };
  plan(Kind::joined, options.joins);
  plan(Kind::left, options.leaves);
  plan(Kind::merged, options.merges);
  plan(Kind::split, options.splits);
  std::stable_sort(m_planned.begin(), m_planned.end(),
                   [](const Planned& a, const Planned& b) { return a.time < b.time; });
}

std::vector<GroupEvent> Encounters::update(Crowd& crowd) {
  std::erase_if(m_planned, [&](const Planned& planned) {
    return planned.time <= crowd.time() && begin(planned.kind, crowd);
  });
  std::vector<GroupEvent> events;
  std::erase_if(m_changes, [&](const Change& change) {
    const auto [movers, others] = sidesOf(change, crowd);
    if (movers.empty() || others.empty()) {
      return true;  // gone before anybody could see it
    }
    const double distance = nearestDistance(movers, others);
    if (joinsOthers(change.kind) ? distance > meetingDistance : distance < partingDistance) {
      return false;
    }
    const GroupEvent event = complete(change, movers);
    if (isSeen(movers, others)) {
      events.push_back(event);
    }
    return true;
  });
  return events;
}

std::pair<Company, Company> Encounters::sidesOf(const Change& change, Crowd& crowd) {
  std::pair<Company, Company> sides;
  const int group = joinsOthers(change.kind) ? change.newGroup : change.oldGroup;
  for (Walker& walker : crowd.walkers()) {
    if (std::find(change.movers.begin(), change.movers.end(), walker.id) != change.movers.end()) {
      sides.first.push_back(&walker);
    } else if (walker.group == group) {
      sides.second.push_back(&walker);
    }
  }
  return sides;
}

GroupEvent Encounters::complete(const Change& change, const Company& movers) {
  GroupEvent event;
  event.kind = change.kind;
  event.group = change.newGroup == GroupEvent::none ? change.oldGroup : change.newGroup;
  event.other = event.group == change.oldGroup ? GroupEvent::none : change.oldGroup;
  for (Walker* const walker : movers) {
    walker->group = change.newGroup;
    walker->isCatchingUp = false;
    event.persons.push_back(walker->id);
  }
  return event;
}

bool Encounters::isSeen(const Company& movers, const Company& others) const {
  const auto isInView = [this](const Walker* walker) { return m_view.sees(walker->position); };
  return std::all_of(movers.begin(), movers.end(), isInView) &&
         std::any_of(others.begin(), others.end(), isInView);
}

bool Encounters::begin(Kind kind, Crowd& crowd) {
  return joinsOthers(kind) ? beginApproach(kind, crowd) : beginParting(kind, crowd);
}

bool Encounters::beginApproach(Kind kind, Crowd& crowd) {
  const auto companies = fitCompanies(crowd);
  const Company* movers = nullptr;
  const Company* target = nullptr;
  double least = earSight;
  for (const Company& some : companies) {
    for (const Company& others : companies) {
      const bool isSmaller = some.size() <= others.size();
      if (&some == &others || others.size() < 2 || !mayApproach(kind, some) || !isSmaller) {
        continue;
      }
      if (const double cost = effort(some, others); cost < least) {
        least = cost;
        movers = &some;
        target = &others;
      }
    }
  }
  if (movers == nullptr) {
    return false;
  }
  const Walker& guide = *target->front();
  Change change{kind, {}, movers->front()->group, guide.group};
  for (Walker* const walker : *movers) {
    walker->company = guide.company;
    walker->goal = guide.goal;
    walker->desiredSpeed = guide.desiredSpeed;
    walker->isCatchingUp = true;
    change.movers.push_back(walker->id);
  }
  m_changes.push_back(change);
  return true;
}

bool Encounters::beginParting(Kind kind, Crowd& crowd) {
  const auto companies = fitCompanies(crowd);
  const auto found =
      std::find_if(companies.begin(), companies.end(),
                   [kind](const Company& company) { return mayPart(kind, company); });
  if (found == companies.end()) {
    return false;
  }
  // The outermost on one side, so that nobody has to push through the others.
  Company members = *found;
  const cv::Point2d heading = members.front()->velocity;
  std::sort(members.begin(), members.end(), [&](const Walker* a, const Walker* b) {
    return heading.cross(a->position) > heading.cross(b->position);
  });
  const std::size_t count = kind == Kind::left ? 1 : members.size() / 2;
  const bool isGroup = count > 1;
  const Walker& first = *members.front();
  Change change{kind, {}, first.group, isGroup ? crowd.newGroup() : GroupEvent::none};
  const int company = crowd.newCompany();
  const cv::Point2d goal = drawTurn(first);
  for (std::size_t i = 0; i < count; ++i) {
    members[i]->company = company;
    members[i]->goal = goal;
    change.movers.push_back(members[i]->id);
  }
  m_changes.push_back(change);
  return true;
}

cv::Point2d Encounters::drawTurn(const Walker& walker) {
  constexpr int attempts = 30;
  constexpr double leastTurn = 0.85;  // as cosine: some 30 degrees
  constexpr double mostTurn = -0.2;   // as cosine: some 100 degrees
  cv::Point2d goal;
  for (int i = 0; i < attempts; ++i) {
    goal = placeElsewhere(walker.goal, m_random);
    const cv::Point2d way = goal - walker.position;
    const double cosine = way.dot(walker.velocity) / (length(way) * length(walker.velocity));
    if (cosine > mostTurn && cosine < leastTurn) {
      break;
    }
  }
  return goal;
}

bool Encounters::isChanging(int group) const {
  return group != GroupEvent::none &&
         std::any_of(m_changes.begin(), m_changes.end(), [group](const Change& c) {
           return c.oldGroup == group || c.newGroup == group;
         });
}

bool Encounters::staysInView(const Company& walkers) const {
  return std::all_of(walkers.begin(), walkers.end(), [this](const Walker* walker) {
    return m_view.sees(walker->position) &&
           m_view.sees(walker->position + walker->velocity * foresight);
  });
}

std::vector<Company> Encounters::fitCompanies(Crowd& crowd) const {
  std::map<int, Company> byNumber;
  for (Walker& walker : crowd.walkers()) {
    byNumber[walker.company].push_back(&walker);
  }
  std::vector<Company> fit;
  for (const auto& [number, company] : byNumber) {
    const bool isOnTheWay = std::any_of(company.begin(), company.end(),
                                        [](const Walker* walker) { return walker->isCatchingUp; });
    if (!isOnTheWay && !isChanging(company.front()->group) && staysInView(company)) {
      fit.push_back(company);
    }
  }
  return fit;
}

}  // namespace grouptracker

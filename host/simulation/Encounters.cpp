#include "host/simulation/Encounters.h"

#include "host/simulation/Posts.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

namespace grouptracker {

namespace {

using Party = std::vector<Walker*>;
using Kind = GroupEvent::Kind;

constexpr double foresight = 6.0;        // s for which people must stay in view to be fit
constexpr double earSight = 12.0;        // m from which people head for others
constexpr double meetingDistance = 1.3;  // m between the nearest; then they are together
constexpr double partingDistance = 2.4;  // m between the nearest; then they are apart
constexpr double restTime = 12.0;        // s between two changes of the same people
constexpr double acquaintance = 4.0;     // s after which an onlooker knows who belongs together
constexpr double secondsToTurn = 2.0;    // s that a difference of velocities counts as distance

bool joinsOthers(Kind kind) {
  return kind == Kind::joined || kind == Kind::merged;
}

double nearestDistance(const Party& some, const Party& others) {
  double nearest = std::numeric_limits<double>::max();
  for (const Walker* const a : some) {
    for (const Walker* const b : others) {
      nearest = std::min(nearest, cv::norm(a->position - b->position));
    }
  }
  return nearest;
}

/// How far some are from walking with others.
double effort(const Party& some, const Party& others) {
  return nearestDistance(some, others) +
         cv::norm(some.front()->velocity - others.front()->velocity) * secondsToTurn;
}

bool isStanding(const Party& company) {
  return company.front()->post.has_value();
}

/// Whether some are of the size to be the ones who move, and would rather than the others.
bool mayApproach(Kind kind, const Party& some, const Party& others) {
  const bool hasSize = kind == Kind::joined ? some.size() == 1 : some.size() > 1;
  const bool wouldMove = isStanding(others) || !isStanding(some);
  return hasSize && wouldMove && others.size() >= 2 && some.size() <= others.size();
}

/// Somebody walks along with a guide, or stands where the guide's company stands.
void follow(Walker& walker, const Walker& guide) {
  walker.company = guide.company;
  walker.goal = guide.goal;
  walker.desiredSpeed = guide.desiredSpeed;
  walker.stayUntil = guide.stayUntil;
  walker.isCatchingUp = true;
  walker.post.reset();
}

bool mayPart(Kind kind, const Party& company) {
  return company.size() >= (kind == Kind::left ? 3U : 4U);
}

}  // namespace

Encounters::Encounters(const SimulationOptions& options, const SimulatedView& view,
                       RandomNumbers& random)
    : m_view(view),
      m_random(random),
      m_rest(options.seconds ? restTime : 0.0),
      m_acquaintance(options.seconds ? acquaintance : 0.0) {
  const double duration = options.duration();
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
  noteWhoIsSeen(crowd);
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
    const GroupEvent event = complete(change, movers, crowd.time());
    if (isSeen(movers, others)) {
      events.push_back(event);
    }
    return true;
  });
  return events;
}

std::pair<Party, Party> Encounters::sidesOf(const Change& change, Crowd& crowd) {
  std::pair<Party, Party> sides;
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

GroupEvent Encounters::complete(const Change& change, const Party& movers, double time) const {
  GroupEvent event;
  event.kind = change.kind;
  event.group = change.newGroup == GroupEvent::none ? change.oldGroup : change.newGroup;
  event.other = event.group == change.oldGroup ? GroupEvent::none : change.oldGroup;
  for (Walker* const walker : movers) {
    walker->group = change.newGroup;
    walker->isCatchingUp = false;
    walker->lastChange = time;
    event.persons.push_back(walker->id);
  }
  return event;
}

bool Encounters::isSeen(const Party& movers, const Party& others) const {
  const auto isInView = [this](const Walker* walker) { return m_view.sees(walker->position); };
  return std::all_of(movers.begin(), movers.end(), isInView) &&
         std::any_of(others.begin(), others.end(), isInView);
}

bool Encounters::begin(Kind kind, Crowd& crowd) {
  return joinsOthers(kind) ? beginApproach(kind, crowd) : beginParting(kind, crowd);
}

bool Encounters::beginApproach(Kind kind, Crowd& crowd) {
  const auto companies = fitCompanies(crowd);
  const Party* movers = nullptr;
  const Party* target = nullptr;
  double least = earSight;
  for (const Party& some : companies) {
    for (const Party& others : companies) {
      if (&some == &others || !mayApproach(kind, some, others)) {
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
    follow(*walker, guide);
    change.movers.push_back(walker->id);
  }
  if (isStanding(*target)) {
    Party all = *target;
    all.insert(all.end(), movers->begin(), movers->end());
    formCircle(all, middleOf(*target), m_random);
  }
  m_changes.push_back(change);
  return true;
}

bool Encounters::beginParting(Kind kind, Crowd& crowd) {
  const auto companies = fitCompanies(crowd);
  const auto found = std::find_if(companies.begin(), companies.end(),
                                  [kind](const Party& company) { return mayPart(kind, company); });
  if (found == companies.end()) {
    return false;
  }
  // The outermost on one side, so that nobody has to push through the others.
  Party members = *found;
  const bool isCircle = isStanding(members);
  const cv::Point2d heading = isCircle ? cv::Point2d(1.0, 0.0) : members.front()->velocity;
  std::sort(members.begin(), members.end(), [&](const Walker* a, const Walker* b) {
    return heading.cross(a->position) > heading.cross(b->position);
  });
  const std::size_t count = kind == Kind::left ? 1 : members.size() / 2;
  const bool isGroup = count > 1;
  const Walker& first = *members.front();
  Change change{kind, {}, first.group, isGroup ? crowd.newGroup() : GroupEvent::none};
  const Party leaving(members.begin(), members.begin() + static_cast<std::ptrdiff_t>(count));
  for (const Walker* const walker : leaving) {
    change.movers.push_back(walker->id);
  }
  sendOff(leaving, crowd);
  if (isCircle) {
    const Party rest(members.begin() + static_cast<std::ptrdiff_t>(count), members.end());
    formCircle(rest, middleOf(rest), m_random);
  }
  m_changes.push_back(change);
  return true;
}

void Encounters::sendOff(const Party& movers, Crowd& crowd) {
  constexpr double elsewhereShare = 0.5;  // of those who stood: they stand elsewhere
  constexpr double elsewhere = 4.5;       // m
  const int company = crowd.newCompany();
  const bool stood = isStanding(movers);
  const cv::Point2d goal = drawTurn(*movers.front());
  const cv::Point2d way = goal - movers.front()->position;
  const cv::Point2d place = middleOf(movers) + way * (elsewhere / cv::norm(way));
  for (Walker* const walker : movers) {
    walker->company = company;
    walker->goal = goal;
    walker->post.reset();
  }
  if (stood && m_view.sees(place) && m_random.chance(elsewhereShare)) {
    formCircle(movers, place, m_random);
  }
}

cv::Point2d Encounters::drawTurn(const Walker& walker) {
  constexpr int attempts = 30;
  constexpr double leastTurn = 0.85;  // as cosine: some 30 degrees
  constexpr double mostTurn = -0.2;   // as cosine: some 100 degrees
  cv::Point2d goal;
  for (int i = 0; i < attempts; ++i) {
    goal = placeElsewhere(walker.goal, m_random);
    if (walker.post) {
      break;  // who stands may turn anywhere
    }
    const cv::Point2d way = goal - walker.position;
    const double cosine = way.dot(walker.velocity) / (cv::norm(way) * cv::norm(walker.velocity));
    if (cosine > mostTurn && cosine < leastTurn) {
      break;
    }
  }
  return goal;
}

void Encounters::noteWhoIsSeen(const Crowd& crowd) {
  std::map<std::uint32_t, double> seen;
  for (const Walker& walker : crowd.walkers()) {
    if (m_view.sees(walker.position)) {
      const auto before = m_seenSince.find(walker.id);
      seen[walker.id] = before == m_seenSince.end() ? crowd.time() : before->second;
    }
  }
  m_seenSince = std::move(seen);
}

bool Encounters::isChanging(int group) const {
  return group != GroupEvent::none &&
         std::any_of(m_changes.begin(), m_changes.end(), [group](const Change& c) {
           return c.oldGroup == group || c.newGroup == group;
         });
}

bool Encounters::staysInView(const Party& walkers) const {
  return std::all_of(walkers.begin(), walkers.end(), [this](const Walker* walker) {
    return m_view.sees(walker->position) &&
           m_view.sees(walker->position + walker->velocity * foresight);
  });
}

bool Encounters::isFit(const Party& company, double time) const {
  const bool isBusy = std::any_of(company.begin(), company.end(), [&](const Walker* walker) {
    const bool isComing = walker->post && !walker->stands();
    const bool isTired = time - walker->lastChange < m_rest;
    const auto seen = m_seenSince.find(walker->id);
    const bool isNew =
        m_acquaintance > 0.0 && (seen == m_seenSince.end() || time - seen->second < m_acquaintance);
    return walker->isCatchingUp || walker->waits || isComing || isTired || isNew;
  });
  return !isBusy && !isChanging(company.front()->group) && staysInView(company);
}

std::vector<Party> Encounters::fitCompanies(Crowd& crowd) const {
  std::map<int, Party> byNumber;
  for (Walker& walker : crowd.walkers()) {
    byNumber[walker.company].push_back(&walker);
  }
  std::vector<Party> fit;
  for (const auto& [number, company] : byNumber) {
    if (isFit(company, crowd.time())) {
      fit.push_back(company);
    }
  }
  return fit;
}

}  // namespace grouptracker

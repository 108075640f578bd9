#include "host/simulation/TrackerFaults.h"

#include <cmath>
#include <utility>

namespace grouptracker {

namespace {

constexpr double minute = 60.0;         // s
constexpr double errorTime = 1.0;       // s within which an error fades
constexpr double shortestGap = 0.2;     // s
constexpr double longestGap = 2.5;      // s
constexpr double switchDistance = 1.2;  // m

}  // namespace

std::vector<TrackerFaults::Change> TrackerFaults::advance(double seconds,
                                                          const std::vector<Walker>& inView) {
  std::vector<Change> changes;
  for (const Walker& walker : inView) {
    const auto [track, isNew] = m_tracks.try_emplace(walker.id);
    if (isNew) {
      track->second.id = walker.id;
      track->second.error = {m_random.normal(m_options.jitter), m_random.normal(m_options.jitter)};
    }
    wander(track->second, seconds);
    lose(track->second, seconds, changes);
  }
  m_dueSwitches += m_random.chance(m_options.switches / minute * seconds) ? 1 : 0;
  if (m_dueSwitches > 0) {
    exchange(inView, changes);
  }
  return changes;
}

// An Ornstein-Uhlenbeck process: errors of this kind do not average out within a second.
void TrackerFaults::wander(Track& track, double seconds) {
  const double step = m_options.jitter * std::sqrt(2.0 * seconds / errorTime);
  track.error *= 1.0 - seconds / errorTime;
  track.error += cv::Point2d(m_random.normal(step), m_random.normal(step));
}

void TrackerFaults::lose(Track& track, double seconds, std::vector<Change>& changes) {
  if (track.lostFor > 0.0) {
    track.lostFor -= seconds;
    if (track.lostFor <= 0.0 && track.comesBackNew) {
      const Id id = firstNewId + m_newIds++;
      changes.push_back({false, track.id, id});
      track.id = id;
    }
  } else if (m_random.chance(m_options.gaps / minute * seconds)) {
    // Short gaps are more frequent than long ones.
    const double share = m_random.uniform(0.0, 1.0);
    track.lostFor = shortestGap + (longestGap - shortestGap) * share * share;
    track.comesBackNew = m_random.chance(m_options.renamed);
  }
}

void TrackerFaults::exchange(const std::vector<Walker>& inView, std::vector<Change>& changes) {
  std::vector<std::pair<Id, Id>> near;
  for (auto a = inView.begin(); a != inView.end(); ++a) {
    for (auto b = std::next(a); b != inView.end(); ++b) {
      const cv::Point2d apart = a->position - b->position;
      if (apart.dot(apart) < switchDistance * switchDistance && !isLost(a->id) && !isLost(b->id)) {
        near.emplace_back(a->id, b->id);
      }
    }
  }
  if (near.empty()) {
    return;
  }
  const auto [a, b] = near[static_cast<std::size_t>(m_random.below(static_cast<int>(near.size())))];
  std::swap(m_tracks.at(a).id, m_tracks.at(b).id);
  changes.push_back({true, idOf(a), idOf(b)});
  --m_dueSwitches;
}

TrackerFaults::Id TrackerFaults::idOf(Id person) const {
  const auto track = m_tracks.find(person);
  return track == m_tracks.end() ? person : track->second.id;
}

bool TrackerFaults::isLost(Id person) const {
  const auto track = m_tracks.find(person);
  return track != m_tracks.end() && track->second.lostFor > 0.0;
}

cv::Point2d TrackerFaults::errorOf(Id person) const {
  const auto track = m_tracks.find(person);
  return track == m_tracks.end() ? cv::Point2d() : track->second.error;
}

}  // namespace grouptracker

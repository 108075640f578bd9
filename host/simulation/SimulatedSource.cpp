#include "host/simulation/SimulatedSource.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

// Any numbers that part the seeds.
constexpr std::uint64_t sensingStream = 0x9E3779B97F4A7C15ULL;
constexpr std::uint64_t faultStream = 0xD1B54A32D192ED03ULL;

// The world's own clock, which the usual rates 2.5, 5, 10 and 25 divide.
constexpr double ticksPerSecond = 50.0;
constexpr std::int64_t ticksPerMeeting = 5;
constexpr double tolerance = 1e-6;  // of a tick

bool hasFaults(const SimulationOptions& options) {
  return options.jitter > 0.0 || options.gaps > 0.0 || options.switches > 0.0;
}

}  // namespace

SimulatedSource::SimulatedSource(const SimulationOptions& options, const SimulatedView& view)
    : m_options(options),
      m_view(view),
      m_lives(options.seed),
      m_sensing(options.seed ^ sensingStream),
      m_crowd(planArrivals(options, m_lives), m_lives),
      m_encounters(options, view, m_lives),
      m_faults(options, options.seed ^ faultStream),
      m_tick(std::llround(-warmUp * ticksPerSecond)) {}

bool SimulatedSource::next(ObservationStep& step) {
  if (m_frame == m_options.totalFrames()) {
    return false;
  }
  m_time = static_cast<double>(m_frame) / m_options.rate;
  ++m_frame;
  m_events.clear();
  advanceTo(m_time);
  m_inView = lookAt(m_time - m_crowd.time());
  identify();
  step = ObservationStep();
  step.frame = m_frame;
  step.place = {"the simulated scene", static_cast<std::uint64_t>(m_frame)};
  for (const Walker& walker : m_inView) {
    const cv::Point2d noise(m_sensing.normal(m_options.noise), m_sensing.normal(m_options.noise));
    if (!m_sensing.chance(m_options.missed) && !m_faults.isLost(walker.id)) {
      const cv::Point2d place = walker.position + noise + m_faults.errorOf(walker.id);
      step.observations.push_back({m_faults.idOf(walker.id), place, {}});
    }
  }
  std::sort(step.observations.begin(), step.observations.end(),
            [](const Observation& a, const Observation& b) { return a.person < b.person; });
  return true;
}

void SimulatedSource::advanceTo(double time) {
  if (!m_options.seconds) {
    m_crowd.advanceTo(time);
    meet();
    err(1.0 / m_options.rate);
    return;
  }
  const auto last = static_cast<std::int64_t>(std::floor(time * ticksPerSecond + tolerance));
  for (; m_tick <= last; ++m_tick) {
    m_crowd.advanceTo(static_cast<double>(m_tick) / ticksPerSecond);
    if (m_tick >= 0 && m_tick % ticksPerMeeting == 0) {
      meet();
    }
    if (m_tick >= 0) {
      err(1.0 / ticksPerSecond);
    }
  }
}

void SimulatedSource::meet() {
  const auto events = m_encounters.update(m_crowd);
  m_events.insert(m_events.end(), events.begin(), events.end());
  if (hasFaults(m_options)) {
    m_watched = lookAt(0.0);
  }
}

void SimulatedSource::err(double seconds) {
  if (!hasFaults(m_options)) {
    return;
  }
  for (const TrackerFaults::Change& change : m_faults.advance(seconds, m_watched)) {
    GroupEvent event;
    event.kind = change.isSwitch ? GroupEvent::Kind::switched : GroupEvent::Kind::renamed;
    event.persons = {change.first, change.second};
    m_events.push_back(event);
  }
}

/// Who is in view, `lag` seconds after the last tick.
std::vector<Walker> SimulatedSource::lookAt(double lag) const {
  std::vector<Walker> inView;
  for (const Walker& walker : m_crowd.walkers()) {
    Walker seen = walker;
    if (lag > tolerance) {
      seen.position += walker.velocity * lag;
    }
    if (m_view.sees(seen.position)) {
      inView.push_back(seen);
    }
  }
  return inView;
}

/// Says in the tracker's ids who is in view and what happened.
void SimulatedSource::identify() {
  m_tracked = m_inView;
  for (Walker& walker : m_tracked) {
    walker.id = m_faults.idOf(walker.id);
  }
  std::sort(m_tracked.begin(), m_tracked.end(),
            [](const Walker& a, const Walker& b) { return a.id < b.id; });
  for (GroupEvent& event : m_events) {
    if (event.kind != GroupEvent::Kind::switched && event.kind != GroupEvent::Kind::renamed) {
      for (std::uint32_t& person : event.persons) {
        person = m_faults.idOf(person);
      }
    }
  }
}

std::optional<std::uint64_t> SimulatedSource::totalSteps() const {
  return static_cast<std::uint64_t>(m_options.totalFrames());
}

}  // namespace grouptracker

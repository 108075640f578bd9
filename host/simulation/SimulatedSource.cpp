#include "host/simulation/SimulatedSource.h"

#include <algorithm>
#include <iterator>

namespace grouptracker {

namespace {

constexpr std::uint64_t sensingStream = 0x9E3779B97F4A7C15ULL;  // any number that parts the seeds

}  // namespace

SimulatedSource::SimulatedSource(const SimulationOptions& options, const SimulatedView& view)
    : m_options(options),
      m_view(view),
      m_lives(options.seed),
      m_sensing(options.seed ^ sensingStream),
      m_crowd(planArrivals(options, m_lives), m_lives),
      m_encounters(options, view, m_lives) {}

bool SimulatedSource::next(ObservationStep& step) {
  if (m_frame == m_options.frames) {
    return false;
  }
  m_crowd.advanceTo(static_cast<double>(m_frame) / m_options.rate);
  ++m_frame;
  m_events = m_encounters.update(m_crowd);
  m_inView.clear();
  std::copy_if(m_crowd.walkers().begin(), m_crowd.walkers().end(), std::back_inserter(m_inView),
               [this](const Walker& walker) { return m_view.sees(walker.position); });
  step = ObservationStep();
  step.frame = m_frame;
  step.place = "frame " + std::to_string(m_frame);
  for (const Walker& walker : m_inView) {
    const cv::Point2d noise(m_sensing.normal(m_options.noise), m_sensing.normal(m_options.noise));
    if (!m_sensing.chance(m_options.missed)) {
      step.observations.push_back({walker.id, walker.position + noise, {}});
    }
  }
  return true;
}

std::optional<std::uint64_t> SimulatedSource::totalSteps() const {
  return static_cast<std::uint64_t>(m_options.frames);
}

}  // namespace grouptracker

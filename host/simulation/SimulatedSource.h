#pragma once

#include "host/people/ObservationSource.h"
#include "host/simulation/Crowd.h"
#include "host/simulation/Encounters.h"
#include "host/simulation/SimulatedView.h"
#include "host/simulation/SimulationOptions.h"

#include <cstdint>
#include <vector>

namespace grouptracker {

/// The simulated scene as a tracker sees it: at each frame the people in view, but for those whom
/// it misses, at positions with noise. Tells beside what is true. Missing and noise change nothing
/// of how people walk.
class SimulatedSource : public ObservationSource {
 public:
  SimulatedSource(const SimulationOptions& options, const SimulatedView& view);

  bool next(ObservationStep& step) override;
  std::optional<std::uint64_t> totalSteps() const override;

  // The truth of the last step

  std::int64_t frame() const { return m_frame; }
  /// Everybody in view, missed or not, in ascending order of ids.
  const std::vector<Walker>& inView() const { return m_inView; }
  /// What happened since the step before.
  const std::vector<GroupEvent>& events() const { return m_events; }

 private:
  SimulationOptions m_options;
  const SimulatedView& m_view;
  RandomNumbers m_lives;    ///< who comes when and does what
  RandomNumbers m_sensing;  ///< what is missed, and the noise
  Crowd m_crowd;
  Encounters m_encounters;
  std::int64_t m_frame = 0;
  std::vector<Walker> m_inView;
  std::vector<GroupEvent> m_events;
};

}  // namespace grouptracker

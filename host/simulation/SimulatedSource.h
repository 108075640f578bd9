#pragma once

#include "host/people/ObservationSource.h"
#include "host/simulation/Crowd.h"
#include "host/simulation/Encounters.h"
#include "host/simulation/SimulatedView.h"
#include "host/simulation/SimulationOptions.h"
#include "host/simulation/TrackerFaults.h"

#include <cstdint>
#include <vector>

namespace grouptracker {

/// The simulated scene as a tracker sees it: at each frame the people in view, but for those whom
/// it misses or has lost, at positions with noise, under the ids that it gives them. Tells beside
/// what is true. What the tracker does wrong changes nothing of how people walk.
class SimulatedSource : public ObservationSource {
 public:
  SimulatedSource(const SimulationOptions& options, const SimulatedView& view);

  bool next(ObservationStep& step) override;
  std::optional<std::uint64_t> totalSteps() const override;

  // The truth of the last step

  std::int64_t frame() const { return m_frame; }
  double time() const { return m_time; }  ///< seconds
  /// Everybody in view, missed or not, in ascending order of ids.
  const std::vector<Walker>& inView() const { return m_inView; }
  /// The same people under the ids that the tracker gives them, in ascending order of these.
  const std::vector<Walker>& tracked() const { return m_tracked; }
  /// What happened since the step before, with the tracker's ids.
  const std::vector<GroupEvent>& events() const { return m_events; }

 private:
  void advanceTo(double time);
  void meet();
  void err(double seconds);
  std::vector<Walker> lookAt(double lag) const;
  void identify();

  SimulationOptions m_options;
  const SimulatedView& m_view;
  RandomNumbers m_lives;    ///< who comes when and does what
  RandomNumbers m_sensing;  ///< what is missed, and the noise
  Crowd m_crowd;
  Encounters m_encounters;
  TrackerFaults m_faults;
  std::int64_t m_tick;  ///< the next one of the world's own clock
  std::int64_t m_frame = 0;
  double m_time = 0.0;            ///< seconds
  std::vector<Walker> m_watched;  ///< who was in view at the last meeting
  std::vector<Walker> m_inView;
  std::vector<Walker> m_tracked;
  std::vector<GroupEvent> m_events;
};

}  // namespace grouptracker

#include "library/Tracker.h"

#include "host/base/InputError.h"
#include "host/base/PersonNames.h"
#include "host/camera/BoxLifter.h"
#include "host/output/RunFile.h"
#include "host/people/ObservationSource.h"
#include "host/people/TrackAssembler.h"
#include "host/run/EventDetector.h"
#include "host/run/GroupRun.h"
#include "host/run/RunParameters.h"
#include "library/OwnNames.h"
#include "library/ProcessBeside.h"
#include "library/TrackerValues.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace grouptracker {

namespace {

constexpr std::size_t rememberedNames = 100'000;  // of people; a station has them in a day

/// Wrong input in the way in which those hear of it who use the library.
template <typename Action>
auto telling(const Action& action) {
  try {
    return action();
  } catch (const InputError& error) {
    throw std::invalid_argument(error.what());
  } catch (const ValueProblem& error) {
    throw std::invalid_argument(error.what());
  }
}

RunParameters parametersOf(const TrackerSettings& settings) {
  if (!std::isfinite(settings.rate) || settings.rate <= 0.0) {
    throw InputError("rate", "a number above 0 is expected");
  }
  RunParameters parameters(settings.parameterFile, settings.parameterChanges);
  parameters.suit(settings.rate);
  return parameters;
}

/// As those know the person who use the library.
std::string nameOf(std::uint32_t person) {
  return PersonNames::ofProgram().textOf(person);
}

cv::Rect2d toRect(const std::array<double, 4>& box) {
  return {box[0], box[1], box[2], box[3]};
}

/// Whether the place and the body of a person with a box can be told.
bool canBeLifted(const SeenPerson& person, const kelAbstractDataCalibration& camera) {
  const cv::Rect2d box = toRect(*person.box);
  const auto foot = person.position
                        ? std::optional(cv::Point3f(static_cast<float>((*person.position)[0]),
                                                    static_cast<float>((*person.position)[1]), 0))
                        : liftFoot(camera, box);
  return foot && liftBox(camera, box, *foot);
}

/// For messages.
InputPlace placeOf(const ObservationStep& step) {
  return {fmt::format("frame {}", step.frame)};
}

/// What is wrong with where a person is; empty when nothing is. The camera may be null.
std::string problemOf(const SeenPerson& person, const kelAbstractDataCalibration* camera) {
  const auto isWithin = [](const auto& numbers, double most) {
    return std::all_of(numbers.begin(), numbers.end(),
                       [most](double number) { return std::abs(number) <= most; });
  };
  if (!person.position && !(person.box && camera != nullptr)) {
    return person.box ? "has a box only, for which a camera is needed"
                      : "has neither place nor box";
  }
  if (person.position && !isWithin(*person.position, farthestPosition)) {
    return "lies too far away to be metres, or is no number";
  }
  if (person.box &&
      (!isWithin(*person.box, farthestBox) || (*person.box)[2] < 0.0 || (*person.box)[3] < 0.0)) {
    return "has a box that is none";
  }
  if (person.box && camera != nullptr && !canBeLifted(person, *camera)) {
    return "has a box under which the camera sees no ground";
  }
  return {};
}

/// Where an observation, which can be lifted, stands on the ground as mobiles have it, metres.
cv::Point2f groundOf(const Observation& observation, const kelAbstractDataCalibration* camera) {
  if (observation.position) {
    return *observation.position;
  }
  const cv::Point3f foot = *liftFoot(*camera, *observation.box2D);
  return {foot.x, foot.y};
}

Observation toObservation(const SeenPerson& person) {
  Observation observation;
  observation.person = person.id;
  if (const auto& at = person.position) {
    observation.position = cv::Point2d((*at)[0], (*at)[1]);
  }
  if (const auto& box = person.box) {
    observation.box2D = toRect(*box);
  }
  return observation;
}

}  // namespace

class Tracker::State {
 public:
  explicit State(const TrackerSettings& settings)
      : m_rate(settings.rate), m_camera(cameraOf(settings)) {
    const RunParameters parameters = parametersOf(settings);
    m_groups.emplace(groupOptions(settings, parameters));
    if (settings.runsProcess || settings.onDiagnostics) {
      auto given = std::make_unique<GivenStep>();
      m_given = given.get();
      m_assembler = std::make_unique<TrackAssembler>(std::move(given), m_camera, LinkOptions());
      m_process = std::make_unique<ProcessBeside>(parameters, m_camera, settings.onDiagnostics);
    }
  }

  TrackerStep update(const std::vector<SeenPerson>& people, std::optional<double> time,
                     std::optional<std::int64_t> number) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isFinished) {
      throw std::logic_error("the tracker has finished");
    }
    take(stepOf(people, time, number));
    return takeOldest();
  }

  std::vector<TrackerStep> decided() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<TrackerStep> steps(m_decided.begin(), m_decided.end());
    m_decided.clear();
    return steps;
  }

  std::vector<TrackerStep> finish() {
    {
      const std::lock_guard<std::mutex> lock(m_mutex);
      if (!m_isFinished) {
        m_isFinished = true;
        note(m_groups->finish());
      }
    }
    return decided();
  }

  std::string actorsLine() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_actorsLine;
  }
  std::uint64_t frames() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_frames;
  }

 private:
  /// Hands on the one step that it was given.
  class GivenStep : public ObservationSource {
   public:
    void give(ObservationStep step) { m_step = std::move(step); }

    bool next(ObservationStep& step) override {
      step = std::move(m_step);
      return true;
    }

   private:
    ObservationStep m_step;
  };

  ObservationStep stepOf(const std::vector<SeenPerson>& people, std::optional<double> time,
                         std::optional<std::int64_t> number);
  std::vector<Observation> observationsOf(const std::vector<SeenPerson>& people,
                                          const ObservationStep& step);
  void take(ObservationStep step);
  RunStep seenIn(const ObservationStep& step) const;
  void note(RunSteps steps);
  TrackerStep takeOldest();

  double m_rate;  ///< frames a second
  QSharedPointer<kelAbstractDataCalibration> m_camera;
  std::optional<GroupRun> m_groups;
  // Null when the process is not run: nobody else looks at actors and mobiles.
  std::unique_ptr<ProcessBeside> m_process;
  std::unique_ptr<TrackAssembler> m_assembler;
  GivenStep* m_given = nullptr;  ///< of the assembler
  EventDetector m_events;
  OwnNames m_names{rememberedNames};

  mutable std::mutex m_mutex;  ///< for who calls from several threads
  std::uint64_t m_frames = 0;
  std::optional<std::int64_t> m_number;  ///< of the latest frame
  std::optional<double> m_time;          ///< of the latest frame, seconds
  std::deque<TrackerStep> m_decided;     ///< that were not handed out
  std::string m_actorsLine;
  bool m_isFinished = false;
};

ObservationStep Tracker::State::stepOf(const std::vector<SeenPerson>& people,
                                       std::optional<double> time,
                                       std::optional<std::int64_t> number) {
  const auto count = static_cast<std::int64_t>(m_frames) + 1;
  ObservationStep step;
  step.frame = number.value_or(m_number ? *m_number + 1 : count);
  step.time = time.value_or(static_cast<double>(count) / m_rate);
  if (m_number && step.frame <= *m_number) {
    throw InputError(placeOf(step), fmt::format("the frame before was {}", *m_number));
  }
  if (!std::isfinite(*step.time) || (m_time && *step.time < *m_time)) {
    throw InputError(placeOf(step),
                     fmt::format("the time {} is behind that of the frame before, {}", *step.time,
                                 m_time.value_or(0.0)));
  }
  step.observations = observationsOf(people, step);
  return step;
}

std::vector<Observation> Tracker::State::observationsOf(const std::vector<SeenPerson>& people,
                                                        const ObservationStep& step) {
  std::vector<Observation> observations;
  observations.reserve(people.size());
  for (const SeenPerson& person : people) {
    const std::string problem = problemOf(person, m_camera.get());
    if (!problem.empty()) {
      throw InputError(placeOf(step), "person " + nameOf(person.id) + " " + problem);
    }
    observations.push_back(toObservation(person));
    observations.back().person = m_names.ownOf(person.id);
  }
  const auto isBefore = [](const auto& a, const auto& b) { return a.person < b.person; };
  if (!std::is_sorted(observations.begin(), observations.end(), isBefore)) {
    std::sort(observations.begin(), observations.end(), isBefore);
  }
  const auto twice =
      std::adjacent_find(observations.begin(), observations.end(),
                         [](const auto& a, const auto& b) { return a.person == b.person; });
  if (twice != observations.end()) {
    throw InputError(placeOf(step),
                     "person " + nameOf(m_names.programsOf(twice->person)) + " is there twice");
  }
  return observations;
}

void Tracker::State::take(ObservationStep step) {
  InputFrame frame;
  if (m_process) {
    step.place = placeOf(step);
    m_given->give(step);
    m_assembler->next(frame);
  }
  RunSteps decided = m_process ? m_groups->advance(frame) : m_groups->advance(seenIn(step));
  ++m_frames;
  m_number = step.frame;
  m_time = step.time;
  note(std::move(decided));
  if (m_process) {
    RunStep reported = m_process->advance(frame);
    m_names.giveBack(reported);
    m_actorsLine = grouptracker::actorsLine(reported);
  }
}

/// What the groups want to know, without actors and mobiles.
RunStep Tracker::State::seenIn(const ObservationStep& step) const {
  RunStep seen;
  seen.inputFrame = step.frame;
  seen.time = toldTime(step.time);
  seen.persons.reserve(step.observations.size());
  for (const Observation& observation : step.observations) {
    seen.persons.push_back(
        {observation.person, Sighting{groundOf(observation, m_camera.get()), {}}});
  }
  return seen;
}

void Tracker::State::note(RunSteps steps) {
  for (RunStep& step : steps) {
    step.events = m_events.next(step);
    m_decided.push_back(toTrackerStep(step));
    m_names.giveBack(m_decided.back());
  }
}

TrackerStep Tracker::State::takeOldest() {
  if (m_decided.empty()) {
    return {};
  }
  TrackerStep oldest = std::move(m_decided.front());
  m_decided.pop_front();
  return oldest;
}

Tracker::Tracker(const TrackerSettings& settings)
    : m_state(telling([&] { return std::make_unique<State>(settings); })) {}

Tracker::~Tracker() = default;

TrackerStep Tracker::update(const std::vector<SeenPerson>& people, std::optional<double> time,
                            std::optional<std::int64_t> frame) {
  return telling([&] { return m_state->update(people, time, frame); });
}

std::vector<TrackerStep> Tracker::decided() {
  return m_state->decided();
}

std::vector<TrackerStep> Tracker::finish() {
  return m_state->finish();
}

std::string Tracker::actorsLine() const {
  return m_state->actorsLine();
}

std::uint64_t Tracker::frames() const {
  return m_state->frames();
}

}  // namespace grouptracker

#include "host/input/SceneReader.h"

#include "host/base/InputError.h"
#include "host/camera/BoxLifter.h"
#include "host/live/PeopleMessage.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

constexpr int restartAfter = 5;        // lines in a row that are too early
constexpr double mostRepeated = 10.0;  // seconds that a sender may repeat

struct Undeclared : ValueProblem {
  using ValueProblem::ValueProblem;
};

Undeclared undeclared(std::uint32_t id, const std::string& by) {
  return Undeclared(by + " names the mobile " + std::to_string(id) +
                    ", which was not declared before");
}

std::string nameOf(const SceneActor& actor) {
  return "actor " + std::to_string(actor.id);
}

}  // namespace

SceneReader::SceneReader(std::istream& in, const std::string& name,
                         std::filesystem::path imageFolder, Calibration calibration,
                         std::size_t window)
    : m_lines(in, name),
      m_imageFolder(std::move(imageFolder)),
      m_calibration(std::move(calibration)),
      m_mobiles(window) {}

SceneReader::SceneReader(const std::string& path, Calibration calibration)
    : m_path(path),
      m_file(std::make_unique<InputFile>(path)),
      m_lines(m_file->stream(), path == "-" ? "standard input" : path),
      m_imageFolder(path == "-" ? std::filesystem::path()
                                : std::filesystem::path(path).parent_path()),
      m_calibration(std::move(calibration)) {}

void SceneReader::surviveLosses() {
  constexpr std::size_t rememberedMobiles = 1'000'000;  // some 100 MB; fifty people for minutes
  m_survivesLosses = true;
  m_mobiles.keepLatest(rememberedMobiles);
}

void SceneReader::readPlacesOnly() {
  m_parser = SceneLineParser(ScenePart::places);
  m_mobiles.keepNothing();
}

void SceneReader::planActors() {
  m_parser.forgetLists();
  m_actors.reset();
}

bool SceneReader::next(InputFrame& frame) {
  frame = InputFrame();
  if (!m_lines.nextFilled()) {
    return false;
  }
  frame.number = ++m_frames;
  frame.place = m_lines.place();
  m_mobiles.beginFrame();
  try {
    read(frame);
  } catch (const Undeclared& problem) {
    m_parser.forgetLists();
    throw UndeclaredMobile(m_lines.error(problem.what()));
  } catch (const ValueProblem& problem) {
    m_parser.forgetLists();
    throw m_lines.error(problem.what());
  }
  if (m_actors) {
    m_actors->make(frame);
    frame.plans.clear();
  }
  if (!m_scene.image.empty()) {
    frame.imageFile = m_imageFolder / m_scene.image;
  }
  return true;
}

void SceneReader::read(InputFrame& frame) {
  m_parser.parse(m_lines.line(), m_scene);
  if (m_mostPeople && m_scene.actors.size() > *m_mostPeople) {
    throw ValueProblem(tooMany(*m_mostPeople));
  }
  countFrame(frame);
  for (const SceneMobile& mobile : m_scene.mobiles) {
    observe(mobile, frame);
  }
  refuseRepeatedActors();
  if (m_mobiles.hasRenamed() && !m_readsWholeLists) {
    // The lists of the frame before may have mobiles that their ids do not name any more.
    m_readsWholeLists = true;
    m_parser.readWholeLists();
    m_parser.parse(m_lines.line(), m_scene);
  }
  frame.plans.reserve(m_scene.actors.size());
  for (const SceneActor& actor : m_scene.actors) {
    frame.plans.push_back(plan(actor));
  }
}

std::optional<std::uint64_t> SceneReader::totalFrames() {
  if (m_path.empty() || !std::filesystem::is_regular_file(m_path)) {
    return std::nullopt;
  }
  InputFile file(m_path);
  LineReader lines(file.stream(), m_path);
  std::uint64_t frames = 0;
  while (lines.nextFilled()) {
    ++frames;
  }
  return frames;
}

// A line without a number of its own is counted among all lines.
void SceneReader::countFrame(InputFrame& frame) {
  frame.number = m_scene.frame.value_or(frame.number);
  frame.time = m_scene.time;
  if (isNewBeginning(frame)) {
    m_lastNumber.reset();
    m_lastTime.reset();
  }
  if (m_lastNumber && frame.number <= *m_lastNumber) {
    throw ValueProblem("the frame is number " + std::to_string(frame.number) +
                       ", the one before it number " + std::to_string(*m_lastNumber) +
                       "; numbers must grow");
  }
  if (frame.time && m_lastTime && *frame.time <= *m_lastTime) {
    throw ValueProblem("the time is not later than that of a frame before");
  }
  m_lastNumber = frame.number;
  m_lastTime = frame.time ? frame.time : m_lastTime;
}

/// Whether so many lines went back that the sender has started anew, or the one before them was
/// wrong. Those that are repeated after a lost connection show by their times.
bool SceneReader::isNewBeginning(const InputFrame& frame) {
  const bool isBefore = m_lastTime && frame.time && *frame.time <= *m_lastTime;
  const bool goesBack = isBefore || (m_lastNumber && frame.number <= *m_lastNumber);
  const bool isRepeated = isBefore && *frame.time > *m_lastTime - mostRepeated;
  m_earlier = goesBack && !isRepeated ? m_earlier + 1 : 0;
  return m_survivesLosses && m_earlier == restartAfter;
}

void SceneReader::observe(const SceneMobile& mobile, InputFrame& frame) {
  const auto observed = MobilePointer::create(mobile.id, physicalObject(mobile));
  frame.observed.push_back(observed);
  linkFathers(mobile, frame);
  if (!m_mobiles.declare(observed)) {
    throw ValueProblem("mobile " + std::to_string(mobile.id) + " is declared twice in this frame");
  }
}

QSharedPointer<kelDataPhysicalObject> SceneReader::physicalObject(const SceneMobile& mobile) const {
  const auto fail = [&](const std::string& problem) {
    return ValueProblem("mobile " + std::to_string(mobile.id) + ": " + problem);
  };
  if ((!mobile.box3D || !mobile.position) && !m_calibration) {
    throw fail(std::string("\"") + (mobile.box3D ? "position" : "box3d") +
               "\" is missing and there is no calibration to derive it");
  }
  const auto position = mobile.position ? mobile.position : liftFoot(*m_calibration, mobile.box2D);
  if (!position) {
    throw fail("the camera sees no ground under box2d, so the position cannot be derived");
  }
  const auto box3D = mobile.box3D ? mobile.box3D : liftBox(*m_calibration, mobile.box2D, *position);
  if (!box3D) {
    throw fail("the camera gives no finite box3d for box2d");
  }
  return QSharedPointer<kelDataPhysicalObject>::create(mobile.type, mobile.box2D, *box3D,
                                                       *position);
}

void SceneReader::linkFathers(const SceneMobile& mobile, InputFrame& frame) {
  for (const SceneFather& link : mobile.fathers) {
    const MobilePointer& father = m_mobiles.find(link.id);
    if (!father && m_survivesLosses) {
      continue;
    }
    if (!father) {
      throw undeclared(link.id, "a father link of mobile " + std::to_string(mobile.id));
    }
    kelDataLinkedPhysicalObject::addFatherLink(father, frame.observed.back(), link.reliability);
    frame.fathers.push_back(father);
  }
}

ActorPlan SceneReader::plan(const SceneActor& actor) {
  ActorPlan plan{actor.id, actor.type, actor.box3D, actor.goesOn, actor.losesFirst, {}};
  plan.mobiles.reserve(actor.mobiles.size());
  for (const std::uint32_t id : actor.mobiles) {
    const MobilePointer& mobile = m_mobiles.find(id);
    if (!mobile && m_survivesLosses && id != actor.mobiles.back()) {
      m_parser.forgetLists();  // which the next list would go on from
      continue;
    }
    if (!mobile) {
      throw undeclared(id, nameOf(actor));
    }
    plan.mobiles.push_back(mobile);
  }
  if (!actor.mobiles.empty() && !m_mobiles.isOfThisFrame(actor.mobiles.back())) {
    throw ValueProblem("the last mobile of " + nameOf(actor) + ", " +
                       std::to_string(actor.mobiles.back()) + ", is not of this frame");
  }
  return plan;
}

void SceneReader::refuseRepeatedActors() const {
  std::vector<std::uint32_t> ids;
  for (const SceneActor& actor : m_scene.actors) {
    ids.push_back(actor.id);
  }
  std::sort(ids.begin(), ids.end());
  const auto repeated = std::adjacent_find(ids.begin(), ids.end());
  if (repeated != ids.end()) {
    throw ValueProblem("actor " + std::to_string(*repeated) + " stands twice in this frame");
  }
}

}  // namespace grouptracker

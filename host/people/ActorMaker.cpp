#include "host/people/ActorMaker.h"

#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace grouptracker {

/// An actor with the part of its person's mobiles that it lists, all of them counted from 0.
struct ActorMaker::Record {
  kelDataActor actor;
  std::uint64_t begin = 0;
  std::uint64_t end = 0;

  void listAsIn(const Track& track);
  /// Whether nobody has added to it or taken from it.
  bool isAsMade() const {
    return actor.getLinkedPhysicalObjectList().size() == end - begin &&
           actor.getSpecificProperties().isEmpty();
  }
};

/// Actors of a person that nobody holds. They come back on whatever thread lets go of them; once
/// the person has left there is nobody to take them.
class ActorMaker::Spares {
 public:
  std::unique_ptr<Record> take() {
    const std::lock_guard lock(m_mutex);
    if (m_records.empty()) {
      return std::make_unique<Record>();
    }
    auto record = std::move(m_records.back());
    m_records.pop_back();
    return record;
  }
  void put(std::unique_ptr<Record> record) {
    if (record->isAsMade()) {
      const std::lock_guard lock(m_mutex);
      m_records.push_back(std::move(record));
    }
  }

 private:
  std::mutex m_mutex;
  std::vector<std::unique_ptr<Record>> m_records;
};

void ActorMaker::Record::listAsIn(const Track& track) {
  const auto& list = actor.getLinkedPhysicalObjectList();
  for (; begin < std::min(end, track.lost); ++begin) {
    actor.removeLinkedPhysicalObject(list.front());
  }
  begin = track.lost;
  for (end = std::max(end, begin); end < track.lost + track.mobiles.size(); ++end) {
    actor.addLinkedPhysicalObject(track.mobiles[end - track.lost]);
  }
}

void ActorMaker::make(InputFrame& frame) {
  m_before.swap(m_tracks);
  m_tracks.clear();
  for (const ActorPlan& plan : frame.plans) {
    frame.actors.append(actorOf(plan, trackOf(plan)));
  }
}

ActorMaker::Track& ActorMaker::trackOf(const ActorPlan& plan) {
  auto before = m_before.extract(plan.id);
  if (plan.goesOn && (!before || before.mapped().mobiles.empty())) {
    throw std::logic_error("an actor goes on that was not in the frame before");
  }
  Track& track = before ? m_tracks.insert(std::move(before)).position->second : m_tracks[plan.id];
  if (!track.spares) {
    track.spares = std::make_shared<Spares>();
  }
  const std::size_t lost = plan.goesOn ? (plan.losesFirst ? 1 : 0) : track.mobiles.size();
  track.mobiles.erase(track.mobiles.begin(),
                      track.mobiles.begin() + static_cast<std::ptrdiff_t>(lost));
  track.lost += lost;
  track.mobiles.insert(track.mobiles.end(), plan.mobiles.begin(), plan.mobiles.end());
  return track;
}

QSharedPointer<kelDataActor> ActorMaker::actorOf(const ActorPlan& plan, const Track& track) {
  auto record = track.spares->take();
  record->listAsIn(track);
  kelDataActor& actor = record->actor;
  static const kelDataPhysicalObject unknown;
  const auto& current =
      track.mobiles.empty() ? unknown : *track.mobiles.back()->getPhysicalObject();
  actor.setIdent(plan.id);
  actor.setType(plan.type.value_or(current.getType()));
  actor.setBoundingBox3D(plan.box3D.value_or(current.getBoundingBox3D()));
  actor.setBoundingBox2D(current.getBoundingBox2D());
  actor.setCurrentPosition(current.getPosition());
  const auto giveBack = [to = std::weak_ptr(track.spares), made = record.get()](kelDataActor*) {
    std::unique_ptr<Record> owned(made);
    if (const auto spares = to.lock()) {
      spares->put(std::move(owned));
    }
  };
  record.release();  // NOLINT(bugprone-unused-return-value): the pointer's deleter has it now
  return {&actor, giveBack};
}

}  // namespace grouptracker

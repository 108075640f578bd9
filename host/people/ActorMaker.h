#pragma once

#include "host/people/InputFrame.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <unordered_map>

namespace grouptracker {

/// Makes the actors of one frame after the other. Of a person's long list nearly all stands in the
/// frame before, so an actor of an earlier frame that nobody holds any more is brought up to date
/// and used again; what somebody holds stays as it is. Each frame must come, in its order, from the
/// first that is planned on.
class ActorMaker {
 public:
  /// Makes the actors that the frame plans; actors that it has already stay.
  void make(InputFrame& frame);

 private:
  class Spares;
  struct Record;

  /// A person's list of mobiles in the frame that was made last.
  struct Track {
    std::deque<MobilePointer> mobiles;
    std::uint64_t lost = 0;  ///< mobiles that the list began with earlier
    std::shared_ptr<Spares> spares;
  };
  using Tracks = std::unordered_map<std::uint32_t, Track>;

  Track& trackOf(const ActorPlan& plan);
  static QSharedPointer<kelDataActor> actorOf(const ActorPlan& plan, const Track& track);

  Tracks m_tracks;  ///< by person; who was not in the latest frame begins afresh
  Tracks m_before;
};

}  // namespace grouptracker

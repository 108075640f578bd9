#pragma once

#include "host/grouping/GroupFinder.h"
#include "host/people/InputFrame.h"
#include "host/people/LinkOptions.h"
#include "host/people/ObservationSource.h"

#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace grouptracker {

/// Who goes with whom, as the evidence about pairs of people says it of what was seen so far: for
/// links, which have to be made before anything that follows is known.
class Companions {
 public:
  Companions() : m_finder(EvidenceModel::builtIn(), 0.0) {}

  /// Takes everybody at the next step of the input.
  void see(const PeopleFrame& people);
  /// 0 to 1: how sure it is that two persons belong together at that step; 0 when they do not.
  double certainty(std::uint32_t a, std::uint32_t b) const;

 private:
  /// The group that somebody is in.
  struct Membership {
    GroupId group = 0;
    double confidence = 0.0;
  };

  GroupFinder m_finder;
  std::map<PersonId, Membership> m_memberships;  ///< at the latest step
};

/// Turns observations of persons into what a tracker would deliver: every observation is a mobile
/// with an id of its own, every person an actor with the chain of its mobiles, and links lead to
/// the person's own latest observations and to its neighbours of the step before, or to those of
/// them with whom it belongs together.
///
/// A body without image box is 0.5 x 0.5 x 1.7 m and stands on its position, its image box is the
/// projection; one with an image box gets its position and size from the camera. A person unseen
/// for more steps than the chain is long is forgotten and starts afresh, which bounds the memory.
class TrackAssembler : public FrameSource {
 public:
  using Calibration = QSharedPointer<kelAbstractDataCalibration>;

  /// The calibration may be null: image boxes are then empty, and observations need positions. With
  /// a rate, how far people walk in a second is known of steps without times, too; frames keep the
  /// times of their steps.
  TrackAssembler(std::unique_ptr<ObservationSource> source, Calibration calibration,
                 const LinkOptions& options, const std::optional<FrameRate>& rate = std::nullopt);

  bool next(InputFrame& frame) override;
  std::optional<std::uint64_t> totalFrames() override { return m_source->totalSteps(); }
  /// Links in another way; before the first frame.
  void relink(const LinkOptions& options);

 private:
  struct Seen {
    MobilePointer mobile;
    std::uint64_t step = 0;
  };
  using Chain = std::deque<Seen>;  ///< a person's observations, the latest last
  /// Somebody at the step before.
  struct Neighbour {
    std::uint32_t person = 0;
    MobilePointer mobile;
    cv::Point2d place;                  ///< on the ground, metres
    std::optional<cv::Point2d> motion;  ///< over the last `motionSteps` steps, metres
    double way = 0.0;                   ///< the length of that
  };

  std::vector<MobilePointer> makeMobiles();
  MobilePointer makeMobile(const Observation& observation, const InputPlace& place);
  std::uint32_t nextId();
  void linkOwn(const Chain& chain, const MobilePointer& mobile, InputFrame& frame) const;
  void seeCompanions(const std::vector<MobilePointer>& mobiles);
  using Link = std::pair<double, const Neighbour*>;  ///< with its reliability
  void linkOthers(std::uint32_t person, const MobilePointer& mobile, InputFrame& frame) const;
  std::vector<Link> linksToNeighbours(std::uint32_t person, const MobilePointer& mobile) const;
  std::vector<Link> linksToCompanions(std::uint32_t person) const;
  std::optional<cv::Point2d> displacement(const Chain& chain) const;
  double motionLikeness(const Neighbour& a, const Neighbour& b) const;
  QSharedPointer<kelDataActor> makeActor(std::uint32_t person, const Chain& chain) const;
  std::size_t memory() const;
  void forgetTheGone();

  std::unique_ptr<ObservationSource> m_source;
  Calibration m_calibration;
  LinkOptions m_options;
  std::optional<FrameRate> m_rate;
  ObservationStep m_observed;  ///< the current step, kept for its buffers
  std::uint64_t m_step = 0;
  std::uint32_t m_lastId = 0;
  std::map<std::uint32_t, Chain> m_chains;  ///< by person
  std::vector<Neighbour> m_previous;        ///< the step before, in ascending order of persons
  std::optional<Companions> m_companions;   ///< none when links lead to neighbours
};

}  // namespace grouptracker

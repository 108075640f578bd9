#pragma once

#include "tracker/tracking/MetaLPO.h"
#include "tracker/tracking/MotionChanges.h"

#include <QVarLengthArray>
#include <opencv2/core/types.hpp>

#include <span>
#include <utility>

/// How much some mobiles differ in speed and in direction: standard deviations, in metres per step
/// and in metres.
struct Spreads {
  double speed = 0.0;
  double direction = 0.0;
};

/// Gathers the motions of mobiles, for the spreads about their common means. The means are sums in
/// the order in which the mobiles came.
class MotionSample {
 public:
  void add(MetaLPO& mobile);
  bool isEmpty() const { return m_motions.isEmpty(); }
  /// Of one mobile and more.
  Spreads spreads() const;

 private:
  struct Motion {
    double speed;
    float x;
    float y;
    float z;
  };
  static constexpr int usualSize = 32;

  QVarLengthArray<Motion, usualSize> m_motions;
  double m_speedSum = 0.0;
  cv::Point3f m_directionSum{0.0F, 0.0F, 0.0F};
};

/// The spreads of the members about their common means.
Spreads spreadsOf(std::span<MetaLPO* const> members);

/// The members of a group at one frame, in ascending order of their ids, with what the coherence
/// asks of them. Computed values are kept until a member comes, goes or loses its best father. The
/// nodes belong to somebody else; a trial may copy a frame for the price of the pointers.
class FrameMembers {
 public:
  explicit FrameMembers(unsigned int frame) : m_frame(frame) {}

  unsigned int frame() const { return m_frame; }
  std::span<MetaLPO* const> members() const {
    return {m_members.constData(), static_cast<std::size_t>(m_members.size())};
  }
  bool isEmpty() const { return m_members.empty(); }
  bool hasSeveral() const { return m_members.size() > 1; }

  /// Puts a mobile in its place; its id must not be there yet.
  void insert(MetaLPO* mobile);
  void remove(int id);

  /// The weighted number of members: a group or crowd counts 2, anything else 1.
  int presence() const { return m_presence; }
  /// The sum of the distances of all pairs, in metres, and the number of pairs.
  std::pair<double, int> pairDistances() const;
  /// The mean of the members' centres, metres.
  cv::Point3f center() const;
  Spreads spreads() const;
  /// Whether the spreads are surely still those of the last call.
  bool hasCurrentSpreads() const;

 private:
  static constexpr int usualSize = 6;

  void forget();
  QVarLengthArray<MetaLPO*, usualSize>::iterator placeOf(int id);

  unsigned int m_frame;
  QVarLengthArray<MetaLPO*, usualSize> m_members;
  const MotionChanges* m_motions = nullptr;  ///< of all members; null when they share none
  int m_presence = 0;
  mutable bool m_hasDistances = false;
  mutable double m_distanceSum = 0.0;
  mutable bool m_hasSpreads = false;
  mutable unsigned int m_motionVersion = 0;  ///< at which the spreads were computed
  mutable Spreads m_spreads;
};

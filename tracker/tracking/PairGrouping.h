#pragma once

#include "tracker/tracking/DistanceLines.h"
#include "tracker/tracking/Grouping.h"

#include <deque>

/// Groups of pairs: two free mobiles that are near each other and coherent found a group.
class PairGrouping : public Grouping {
 public:
  /// Prints who is there and how far they are apart.
  void beforeJoining(GroupTracker& tracker) override;
  /// Lets mobiles that stand for several found or join groups, and pairs those who are free.
  void afterJoining(GroupTracker& tracker) override;

 private:
  struct Member;

  static void pairWithFree(GroupTracker& tracker, const Member& first,
                           const std::deque<Member*>& free);

  DistanceLines m_lines;
};

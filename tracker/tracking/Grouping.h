#pragma once

class GroupTracker;

/// A mode: a way in which the mobiles of the processed frame become groups. In between its two
/// steps those join a group whom their history points to one; what follows, from merges and splits
/// to the end of the frame, is the same for every mode. See `GroupTracker::groupFrame`.
class Grouping {
 public:
  Grouping() = default;
  Grouping(const Grouping&) = default;
  Grouping& operator=(const Grouping&) = delete;
  virtual ~Grouping() = default;

  /// The step before anybody joins a group that is already there.
  virtual void beforeJoining(GroupTracker& tracker) = 0;
  /// The step for those who are free still.
  virtual void afterJoining(GroupTracker& tracker) = 0;
};

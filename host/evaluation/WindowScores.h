#pragma once

#include "host/evaluation/GroupTruth.h"
#include "host/evaluation/PartitionScores.h"
#include "host/evaluation/ScoredSteps.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace grouptracker {

/// How windows are cut out of a run.
struct WindowOptions {
  std::size_t length = 15;   ///< time steps; windows follow each other and do not overlap
  std::size_t together = 6;  ///< time steps of common group that make two persons one group
};

/// A run that is cut into windows in several ways: what each frame says is gathered once.
class WindowedRun {
 public:
  explicit WindowedRun(const GroupedFrames& run);

  /// The whole windows from a frame on, counted from 0: persons who are in view at every time step,
  /// their true groups and the found ones. Windows of less than two such persons are left out.
  std::vector<PartitionPair> windows(std::size_t first, const GroupTruth& truth,
                                     const WindowOptions& options) const;

 private:
  struct Frame {
    std::int64_t number = 0;  ///< the input's own
    std::vector<Person> persons;
    Grouping groups;
  };

  PartitionPair windowAt(std::size_t first, const GroupTruth& truth,
                         const WindowOptions& options) const;

  std::vector<Frame> m_frames;
};

/// The windows from the first frame on.
std::vector<PartitionPair> windowsOf(const GroupedFrames& run, const GroupTruth& truth,
                                     const WindowOptions& options);

/// The mean of the group MITRE's three numbers over windows; `f1` is the mean of the F1s.
PrecisionRecall meanMitre(const std::vector<PartitionPair>& windows);

/// The whole sequence as one window: everybody who was ever in view; two persons are together when
/// they are at `together` of `length` of the time steps at which both are in view, and so are those
/// whom others connect.
PartitionPair wholeSequence(const GroupedFrames& run, const GroupTruth& truth,
                            const WindowOptions& options);

}  // namespace grouptracker

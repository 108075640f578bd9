#pragma once

#include "host/base/OutputFile.h"
#include "host/grouping/FrameGroupsWriter.h"
#include "host/simulation/Encounters.h"
#include "host/simulation/Walker.h"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

/// Writes the true groups of a simulated scene.
///
/// Persons have the ids that the tracker gives them at the frame, so that what a run finds can be
/// compared; the numbers of groups are those of the true groups, whatever ids their members have.
///
/// `truth.jsonl`, one line a frame: the groups of which at least two members are in view, their
/// numbers, and everybody in view, observed or not.
///
///     {"frame": 12, "groups": [[3, 4], [7, 8, 9]], "ids": [2, 5], "persons": [1, 3, 4, 7, 8, 9]}
///
/// `events.jsonl`, in the order of frames: `group` is the one that goes on or begins, `from` the
/// one that merged into it or from which it split, `persons` those who came, went or began.
///
///     {"frame": 57, "event": "merged", "group": 2, "from": 5, "persons": [7, 8, 9]}
///
/// `true_groups.jsonl`: the same in the form in which a run writes groups.
///
/// `groups.txt`, one line a group: persons who are together at more than half of the frames that
/// show both, and whom others connect.
class TruthRecorder {
 public:
  explicit TruthRecorder(const std::filesystem::path& folder);

  struct Moment {
    std::int64_t frame = 0;
    double time = 0.0;  ///< seconds
  };

  /// Notes a frame, in order from 1 on; `inView` in ascending order of ids.
  void write(const Moment& moment, const std::vector<Walker>& inView,
             const std::vector<GroupEvent>& events);
  /// Writes what is known at the end only. Call once after the last frame.
  void finish();

  std::size_t persons() const { return m_persons.size(); }
  std::size_t groups() const { return m_lives.size(); }

 private:
  struct Life {
    std::int64_t first = 0;  ///< frame
    std::int64_t last = 0;   ///< frame
    std::vector<std::uint32_t> founders;
  };
  struct Pair {
    std::int64_t seen = 0;      ///< frames that show both
    std::int64_t together = 0;  ///< of these
  };
  using Groups = std::map<int, std::vector<std::uint32_t>>;

  void writeTruth(std::int64_t frame, const Groups& groups, const std::vector<Walker>& inView);
  void writeGroups(const Moment& moment, const Groups& groups, const std::vector<Walker>& inView,
                   const std::vector<GroupEvent>& events);
  void countPairs(const std::vector<Walker>& inView);
  void addCreatedAndEnded();
  void writeEvents();
  void writeSceneGroups();

  OutputFile m_truth;
  FrameGroupsWriter m_trueGroups;
  OutputFile m_eventFile;
  OutputFile m_groupFile;
  fmt::memory_buffer m_line;
  std::int64_t m_lastFrame = 0;
  std::set<std::uint32_t> m_persons;
  std::map<int, Life> m_lives;  ///< by group
  std::map<std::pair<std::uint32_t, std::uint32_t>, Pair> m_pairs;
  std::vector<std::pair<std::int64_t, GroupEvent>> m_events;  ///< by frame
};

}  // namespace grouptracker

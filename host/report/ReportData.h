#pragma once

#include "host/output/FamilyTree.h"
#include "host/pictures/GroundTurn.h"
#include "host/pictures/GroupColours.h"
#include "host/report/ReportBody.h"
#include "host/run/RunStep.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

namespace grouptracker {

/// A group of the truth at a frame.
struct TrueGroup {
  std::uint32_t id = 0;                ///< the same at all frames
  std::vector<std::uint32_t> persons;  ///< those in view
};

/// Collects what a report shows, in the compact form in which the page reads it. Frames are indices
/// from 0 in the order of the input. A person's way is stored as runs without gaps: the place where
/// it begins and the steps from frame to frame, in centimetres. Membership is stored as spans.
class ReportData {
 public:
  static constexpr std::uint32_t longestGap = 1000;  // frames

  /// Adds the input's next frame with everybody in view. False for a frame that is left out: of a
  /// gap in which nobody is seen the first `longestGap` frames are shown, and what is said about
  /// the others counts for the last of these.
  bool addFrame(std::int64_t inputFrame, const std::vector<RunPerson>& persons);
  /// Adds what was found at one of these frames. False when the input has no such frame.
  bool addGroups(const RunStep& step);
  /// Adds what is true at one of these frames, and whether that was found; false when the input has
  /// no such frame. Frames that nobody tells about count neither as right nor as wrong.
  bool addTruth(std::int64_t inputFrame, const std::vector<TrueGroup>& groups, bool isRight);

  std::size_t frames() const { return m_frameNumbers.size(); }
  /// Those in view at any frame whose names are no plain numbers; to be called after `fill()`.
  std::set<std::uint32_t> namedPersons() const;
  /// How the ground lies as the camera sees it; as it is when nobody knows.
  cv::Matx22f turn() const { return m_turn.matrix().value_or(cv::Matx22f::eye()); }
  /// All arrays; ends all runs and spans.
  void fill(ReportBody& body);

 private:
  struct Run {
    std::uint32_t person = 0;
    std::uint32_t start = 0;
    std::int32_t x = 0;  ///< where it begins, centimetres, as all places and steps
    std::int32_t y = 0;
    std::int32_t lastX = 0;  ///< where it is now
    std::int32_t lastY = 0;
    std::vector<std::int16_t> stepX;
    std::vector<std::int16_t> stepY;
  };
  using Membership = std::pair<std::uint32_t, std::uint32_t>;  ///< group and person

  /// Who was in which group when, as spans of frames without gaps.
  struct Spans {
    std::map<Membership, std::pair<std::uint32_t, std::uint32_t>> open;  ///< first and last frame
    std::vector<std::uint32_t> groups, persons, from, to;

    void add(std::uint32_t frame, const Membership& membership);
    void end(const Membership& membership, std::uint32_t first, std::uint32_t last);
    void endAll();
  };
  /// How sure the groups of the evidence are, in percent: an entry for every frame at which that is
  /// another number than before.
  struct Beliefs {
    std::map<std::uint32_t, std::uint8_t> last;   ///< by group
    std::map<std::uint32_t, std::int32_t> since;  ///< input's number of the first frame, by group
    std::vector<std::uint32_t> groups, frames;
    std::vector<std::uint8_t> percents;

    void add(std::uint32_t frame, const RunGroup& group);
  };
  /// What is known of a frame.
  enum class Verdict : std::uint8_t { unknown, right, wrong };

  /// The last frame that is shown of a gap, and the input's number of the last that is left out.
  struct Gap {
    std::uint32_t frame = 0;
    std::int64_t lastLeftOut = 0;
  };

  void leaveOut(std::int64_t inputFrame);
  std::optional<std::uint32_t> indexOf(std::int64_t inputFrame) const;
  void addPlace(std::uint32_t frame, std::uint32_t person, const cv::Point2f& place,
                std::map<std::uint32_t, Run>& now);
  void addEvent(std::uint32_t frame, const TrackedEvent& event);
  void endRun(const Run& run);
  void fillGroups(ReportBody& body) const;

  std::vector<double> m_frameNumbers;  ///< exact up to 2^53
  std::unordered_map<std::int64_t, std::uint32_t> m_indexOf;
  std::map<std::int64_t, Gap> m_gaps;                   ///< by the first frame that is left out
  std::uint32_t m_emptyFrames = 0;                      ///< in a row, up to the latest
  std::vector<std::uint8_t> m_isDecided;                ///< by frame: whether a step was about it
  std::optional<std::vector<std::uint8_t>> m_verdicts;  ///< by frame; none without truth
  GroundTurn m_turn;
  GroupColours m_colours;
  FamilyTree m_tree;

  std::map<std::uint32_t, Run> m_openRuns;  ///< by person
  std::vector<std::uint32_t> m_runPerson, m_runStart, m_runLength;
  std::vector<std::int32_t> m_runX, m_runY;
  std::vector<std::int16_t> m_stepX, m_stepY;

  Spans m_members;
  Spans m_truth;
  Beliefs m_beliefs;

  std::vector<std::uint8_t> m_eventKind;
  std::vector<std::uint32_t> m_eventFrame, m_eventGroup, m_eventOther;
  std::vector<std::uint32_t> m_eventPersons, m_eventPersonsEnd;
};

}  // namespace grouptracker

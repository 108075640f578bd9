#pragma once

#include "host/report/ReportBody.h"
#include "host/run/RunStep.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace grouptracker {

/// Collects what a report shows, in the compact form in which the page reads it. Frames are indices
/// from 0 in the order of the input. A person's way is stored as runs without gaps: the place where
/// it begins and the steps from frame to frame, in centimetres. Membership is stored as spans.
class ReportData {
 public:
  /// Adds the input's next frame with everybody in view.
  void addFrame(std::int64_t inputFrame, const std::vector<RunPerson>& persons);
  /// Adds what was found at one of these frames. False when the input has no such frame.
  bool addGroups(const RunStep& step);
  /// Marks a frame as one at which the groups differ from the truth; false when it is unknown.
  bool markWrong(std::int64_t inputFrame);
  /// A report without truth marks nothing, not even right frames.
  void beginTruth() { m_wrong.emplace(); }

  std::size_t frames() const { return m_frameNumbers.size(); }
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

  void addPlace(std::uint32_t frame, std::uint32_t person, const cv::Point2f& place,
                std::map<std::uint32_t, Run>& now);
  void addMember(std::uint32_t frame, const Membership& membership);
  void addEvent(std::uint32_t frame, const TrackedEvent& event);
  void endRun(const Run& run);
  void endSpan(const Membership& membership, std::uint32_t first, std::uint32_t last);

  std::vector<std::int32_t> m_frameNumbers;
  std::unordered_map<std::int64_t, std::uint32_t> m_indexOf;
  std::optional<std::vector<std::uint8_t>> m_wrong;

  std::map<std::uint32_t, Run> m_openRuns;  ///< by person
  std::vector<std::uint32_t> m_runPerson, m_runStart, m_runLength;
  std::vector<std::int32_t> m_runX, m_runY;
  std::vector<std::int16_t> m_stepX, m_stepY;

  std::map<Membership, std::pair<std::uint32_t, std::uint32_t>> m_openSpans;  ///< first and last
  std::vector<std::uint32_t> m_memberGroup, m_memberPerson, m_memberFrom, m_memberTo;

  std::vector<std::uint8_t> m_eventKind;
  std::vector<std::uint32_t> m_eventFrame, m_eventGroup, m_eventOther;
  std::vector<std::uint32_t> m_eventPersons, m_eventPersonsEnd;
};

}  // namespace grouptracker
